"""Builders of small Windows machines for samples, acceptance runs and benches.

`regtree` holds a registry in memory, `winetext` and `regf` write it in the two forms in which a
machine's registry stands on disk, `pefile` makes programs with version resources.
"""
