#include "snapshot/modFileDialogs.h"

#include "snapshot/clsStatements.h"

namespace sandrel {
namespace {

std::string Choose(clsShell& shell, const char* method, const FileDialog& dialog) {
  std::string path;
  clsStatements run(shell, method);
  run.Command([&] { run([&] { path = shell.ChooseFile(dialog); }); }, [] {});
  return path;
}

}  // namespace

std::string GetViewNameAndLocation(clsShell& shell, const std::string& folder,
                                   const std::string& title) {
  return Choose(shell, "frmSandrel.GetViewNameAndLocation",
                {title.empty() ? "Create Analysis" : title, ".mdb", "Sandrel.mdb",
                 "MS Access *.mdb|*.mdb|All Files *.*|*.*", folder, false});
}

std::string SaveDialog(clsShell& shell, const std::string& folder, const std::string& title,
                       const std::string& extension, const std::string& filter) {
  return Choose(shell, "frmSandrel.SaveDialog", {title, "." + extension, "", filter, folder, true});
}

}  // namespace sandrel
