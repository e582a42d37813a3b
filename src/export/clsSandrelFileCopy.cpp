#include "export/clsSandrelFileCopy.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <memory>

#include "common/clsError.h"
#include "common/clsFileWorks.h"
#include "common/clsPathText.h"
#include "common/text.h"
#include "export/clsTargetFolder.h"
#include "platform/machine/modHostNames.h"

namespace sandrel {
namespace {

constexpr std::int32_t CannotCreateDirectory = -2147221429;

// The names of a Windows path as names of the host. One that no name of the host stands for, or
// that would lead upwards, gives an empty name, which the target refuses.
std::vector<std::string> HostNames(std::string_view path) {
  std::vector<std::string> names;
  while (!path.empty()) {
    const std::size_t end = path.find('\\');
    std::string& name = names.emplace_back();
    if (!hostnames::AppendHostName(name, path.substr(0, end))) name.clear();
    path.remove_prefix(end == std::string_view::npos ? path.size() : end + 1);
  }
  return names;
}

// A path that steps upwards names no file that a scan could have met.
bool StepsUp(std::string_view path) {
  while (!path.empty()) {
    const std::size_t end = path.find('\\');
    const std::string_view part = path.substr(0, end);
    if (part == "." || part == "..") return true;
    path.remove_prefix(end == std::string_view::npos ? path.size() : end + 1);
  }
  return false;
}

}  // namespace

void clsSandrelFileCopy::CopyFiles(const std::vector<std::string>& files,
                                   const std::string& destinationFolder,
                                   const std::string& rootPrefix, std::vector<std::string>& results,
                                   std::int64_t& totalBytes) {
  m_copied = m_missing = m_ignored = m_lowestTime = m_bytesDone = 0;
  m_secondsTaken = 0;
  m_file.clear();
  m_destination = destinationFolder;
  m_progress.SetProgress(0);
  m_progress.Show();
  m_shell.DoEvents(false);
  std::unique_ptr<clsTargetFolder> target;
  Next next = Try([&] { target = std::make_unique<clsTargetFolder>(destinationFolder); });
  std::size_t done = 0;
  for (const std::string& file : files) {
    if (target == nullptr || next == Next::Stop || m_progress.CancelAnimate()) break;
    std::error_code failure;
    const auto host = m_machine.HostPath(file);
    const std::uintmax_t size = host ? std::filesystem::file_size(*host, failure) : 0;
    const auto begun = std::chrono::steady_clock::now();
    m_file = file;
    next = CopyOne(*target, file, rootPrefix);
    const auto taken = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - begun);
    if (!failure) {
      TellTime(static_cast<std::int64_t>(size), static_cast<double>(taken.count()) / 1000,
               totalBytes);
    }
    ++done;
    m_progress.SetProgress(static_cast<int>(done * 100 / files.size()));
  }
  m_progress.Close();
  results.push_back(fmt::format("{} File(s) were successfully copied.", m_copied));
  if (m_missing > 0) {
    results.push_back(
        fmt::format("{} File(s) were NOT copied because they no longer exist.", m_missing));
  }
  if (m_ignored > 0) results.push_back(fmt::format("{} Error(s) were ignored", m_ignored));
}

std::string clsSandrelFileCopy::Summary(std::vector<std::string> results, std::int64_t deleted) {
  if (deleted > 0) {
    results.push_back(
        fmt::format("{} File(s) were ignored because they were Deleted Files", deleted));
  }
  return fmt::format("{}", fmt::join(results, "\n"));
}

// Runs one statement; an error is reported, and the answer tells how to go on.
template <class Statement>
clsSandrelFileCopy::Next clsSandrelFileCopy::Try(Statement&& statement) {
  for (;;) {
    try {
      statement();
      return Next::Done;
    } catch (const clsError& error) {
      if (error.Number() == errnum::FileNotFound) {
        ++m_missing;
        return Next::Skip;
      }
      switch (OnError ? OnError(m_file, error)
                      : m_shell.ReportError(error.Number(), error.Description(), error.Source(),
                                            "clsFileWorks.CopyFiles")) {
        case Answer::Retry:
          break;
        case Answer::Ignore:
          ++m_ignored;
          return Next::Skip;
        default:
          return Next::Stop;
      }
    }
  }
}

// Where below the destination the file goes.
std::string clsSandrelFileCopy::Below(const std::string& file,
                                      const std::string& rootPrefix) const {
  constexpr std::size_t DriveLength = 3;
  if (DriveFolders) {
    return file.size() < DriveLength ? file : file.substr(0, 1) + "\\" + file.substr(DriveLength);
  }
  if (rootPrefix.empty()) return clsPathText::TextAfterLast(file, "\\");
  // The prefix is the beginning of the path but for the case of its letters.
  return file.substr(text::Left(file, text::Length(rootPrefix) + 1).size());
}

clsSandrelFileCopy::Next clsSandrelFileCopy::CopyOne(clsTargetFolder& target,
                                                     const std::string& file,
                                                     const std::string& rootPrefix) {
  const std::string name = clsPathText::TextAfterLast(file, "\\");
  const std::string below = Below(file, rootPrefix);
  std::vector<std::string> parts = HostNames(below);
  const std::string hostName = parts.empty() ? std::string() : parts.back();
  if (!parts.empty()) parts.pop_back();
  Next next = Try([&] {
    if (target.MakeFolder(parts)) return;
    // As it was asked for: a name that no folder can have would be missing in `parts`.
    std::string folder = clsPathText::TextBeforeLast(below, "\\");
    std::replace(folder.begin(), folder.end(), '\\', '/');
    throw clsError(CannotCreateDirectory,
                   "Cannot create directory " + clsFileWorks::Join(m_destination, folder),
                   "clsSandrelFileCopy.CopyFiles");
  });
  if (next != Next::Done) return next;
  m_progress.SetFile(name);
  std::string folder = m_destination;
  for (const std::string& part : parts) folder = clsFileWorks::Join(folder, part);
  m_progress.SetFolder(
      fmt::format("'{}' to '{}'", clsPathText::TextBeforeLast(file, "\\"), folder));
  m_shell.DoEvents(false);
  if (m_progress.CancelAnimate()) return Next::Stop;
  next = Try([&] {
    const auto source = StepsUp(file) ? std::nullopt : m_machine.HostPath(file);
    if (!source) throw clsError(errnum::FileNotFound, "File not found");
    target.Copy(*source, parts, hostName);
    ++m_copied;
  });
  return next == Next::Skip ? Next::Done : next;
}

// The estimate rests on the speed so far, as small files say little of large ones, and only falls.
void clsSandrelFileCopy::TellTime(std::int64_t bytes, double seconds, std::int64_t& totalBytes) {
  if (totalBytes <= 0) return;
  totalBytes -= bytes;
  m_bytesDone += bytes;
  m_secondsTaken += seconds;
  if (m_secondsTaken <= 0 || m_bytesDone <= 0) return;
  const double speed = static_cast<double>(m_bytesDone) / m_secondsTaken;
  const std::int64_t remaining = std::llround(static_cast<double>(totalBytes) / speed);
  if (remaining <= 0 || (m_lowestTime > 0 && remaining >= m_lowestTime)) return;
  m_lowestTime = remaining;
  m_progress.SetMessage(fmt::format("Time Remaining: {}", remaining));
}

}  // namespace sandrel
