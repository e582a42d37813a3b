// Boxes and dialogs that wait for the user, and the mouse pointer.
#pragma once

#include <string>
#include <vector>

#include "common/clsShell.h"

class QWidget;

namespace sandrel::qt {

/// Asks in a modal box over `parent`, which may be null or hidden. Escape answers No or Ok;
/// between Abort, Retry and Ignore there is no way round.
Answer AskBox(QWidget* parent, const MessageBox& box);

/// Asks for a file, which need not exist, and never asks about overwriting one. The answer is an
/// absolute host path; empty when the user cancelled.
std::string ChooseFile(QWidget* parent, const FileDialog& dialog);

/// Asks for files that exist, one or several; dialog.Save is not looked at. Absolute host paths;
/// none when the user cancelled.
std::vector<std::string> ChooseFiles(QWidget* parent, const FileDialog& dialog);

/// Asks for a folder that exists. The answer is an absolute host path; empty when the user
/// cancelled.
std::string ChooseFolder(QWidget* parent, const std::string& title, const std::string& start);

/// Sets the pointer for the whole program, to one of the pointer namespace. Boxes and dialogs show
/// the usual one while they are up.
void SetPointer(int shape);

}  // namespace sandrel::qt
