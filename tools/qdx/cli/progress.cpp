// SPDX-License-Identifier: Apache-2.0
#include "progress.h"

#include <algorithm>
#include <cstdio>

#include <unistd.h>

#include "terminal.h"

namespace NVORNQDX20 {
namespace {

TProgressLine* gShown = nullptr;

}  // namespace

TProgressLine::TProgressLine() : fIsTerminal(::isatty(STDERR_FILENO) != 0) {}

TProgressLine::~TProgressLine() {
  if (fWidth != 0) Show("");
  if (gShown == this) gShown = nullptr;  // in the background nothing is shown or cleared
}

void TProgressLine::Show(const std::string& text) {
  // In the background, "stty tostop" would stop the command.
  if (!fIsTerminal || ::tcgetpgrp(STDERR_FILENO) != ::getpgrp()) return;
  const std::size_t limit = TerminalWidth(STDERR_FILENO) - 1;
  std::string line = CutToWidth(ForTerminal(text), limit);
  const std::size_t width = WidthOf(line);
  const std::size_t former = std::min(fWidth, limit);
  if (width < former) line.append(former - width, ' ');
  std::fputs(("\r" + line + (width == 0 ? "\r" : "")).c_str(), stderr);
  fWidth = width;
  gShown = width == 0 ? nullptr : this;
}

void TProgressLine::ClearShown() {
  if (gShown != nullptr) gShown->Show("");
}

}  // namespace NVORNQDX20
