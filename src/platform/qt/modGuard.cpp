#include "platform/qt/modGuard.h"

#include <cstdio>
#include <new>

#include "common/text.h"

namespace sandrel::qt {
namespace {

ErrorReport theReport;

// The exception that is being handled, as the program's own.
clsError Caught() {
  try {
    throw;
  } catch (const clsError& error) {
    return error;
  } catch (const std::bad_alloc&) {
    return {errnum::OutOfMemory, "Out of memory"};
  } catch (const std::exception& error) {
    return {errnum::Internal, error.what()};
  } catch (...) {
    return {errnum::Internal, "Internal error"};
  }
}

void NoteError() noexcept {
  try {
    std::fprintf(stderr, "sandrel: %s\n", text::Escaped(Caught().what()).c_str());
  } catch (...) {  // there is nobody left to tell
  }
}

}  // namespace

clsErrorReport::clsErrorReport(ErrorReport report)
    : m_before(std::exchange(theReport, std::move(report))) {}

clsErrorReport::~clsErrorReport() {
  theReport = std::move(m_before);
}

bool RunAgain(const QPointer<const QObject>& object) noexcept {
  try {
    const clsError error = Caught();
    if (!theReport) {
      NoteError();
      return false;
    }
    const ErrorReport report = theReport;  // it may go while it is at work
    const std::string where = object ? object->objectName().toStdString() : std::string();
    return report(error, where) && object;
  } catch (...) {
    NoteError();
    return false;
  }
}

}  // namespace sandrel::qt
