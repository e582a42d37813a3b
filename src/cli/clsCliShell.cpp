#include "cli/clsCliShell.h"

#include <fmt/format.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

#include "common/text.h"

namespace sandrel {
namespace {

volatile std::sig_atomic_t g_interrupted = 0;

void OnSignal(int) {
  g_interrupted = 1;
}

// Messages of the window have several paragraphs; on the terminal each is one line.
std::string OneLine(std::string_view text) {
  std::string line;
  for (const char c : text) {
    const bool blank = c == '\n' || c == '\r' || c == '\t';
    if (blank && (line.empty() || line.back() == ' ')) continue;
    line += blank ? ' ' : c;
  }
  return text::Escaped(line);
}

}  // namespace

clsCliShell::clsCliShell(bool assumeYes)
    : m_assumeYes(assumeYes), m_terminal(isatty(STDERR_FILENO) != 0) {}

clsCliShell::~clsCliShell() {
  ClearLine();
}

void clsCliShell::CatchInterrupts() {
  for (const int number : {SIGINT, SIGTERM}) std::signal(number, OnSignal);
}

bool clsCliShell::WasInterrupted() {
  return g_interrupted != 0;
}

void clsCliShell::Say(std::string_view text) {
  ClearLine();
  fmt::print(stderr, "sandrel-cli: {}\n", OneLine(text));
}

void clsCliShell::Refuse(std::string_view why) {
  if (m_status == exitstatus::Done) m_status = exitstatus::Refused;
  Say(why);
}

void clsCliShell::Fail(std::string_view why) {
  m_status = exitstatus::Failed;
  Say(why);
}

void clsCliShell::SetStatusText(std::string_view text) {
  m_text = text;
  ShowLine();
}

void clsCliShell::SetProgress(int percent) {
  if (percent == m_percent) return;
  m_percent = percent;
  ShowLine();
}

void clsCliShell::ShowLine() {
  if (!m_terminal) return;
  const std::string progress = m_percent == 0 ? std::string() : fmt::format(" {}%", m_percent);
  fmt::print(stderr, "\r\033[K{}{}", text::Left(OneLine(m_text), 70), progress);
  std::fflush(stderr);
  m_lineShown = !m_text.empty() || m_percent != 0;
}

void clsCliShell::ClearLine() {
  if (!m_lineShown) return;
  fmt::print(stderr, "\r\033[K");
  std::fflush(stderr);
  m_lineShown = false;
}

void clsCliShell::Tell(std::string_view text) {
  Say(text);
}

Answer clsCliShell::Ask(const MessageBox& box) {
  if (box.Choice == Buttons::Ok) {
    Say(box.Text);
    return Answer::Ok;
  }
  if (m_assumeYes || m_interrupting) return Answer::Yes;
  Refuse(box.Text + " Not done; give --yes to go on.");
  return Answer::No;
}

Answer clsCliShell::ReportError(std::int32_t /*number*/, std::string_view description,
                                std::string_view /*source*/, std::string_view /*method*/) {
  Fail(description);
  return Answer::Abort;
}

void clsCliShell::DoEvents(bool /*often*/) {
  if (g_interrupted == 0) return;
  // Each scanner that still starts is cancelled in its turn.
  if (m_status == exitstatus::Done) m_status = exitstatus::Refused;
  m_interrupting = true;
  if (OnInterrupt) OnInterrupt();
  m_interrupting = false;
}

}  // namespace sandrel
