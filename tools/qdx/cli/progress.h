// SPDX-License-Identifier: Apache-2.0
/// Shows progress on a terminal.
#ifndef TOOLS_QDX_CLI_PROGRESS_H_
#define TOOLS_QDX_CLI_PROGRESS_H_

#include <cstddef>
#include <string>

namespace NVORNQDX20 {

/// One line of standard error that is overwritten, if it is a terminal. The destructor clears it,
/// with blanks, which works on every terminal.
class TProgressLine {
 public:
  TProgressLine();
  ~TProgressLine();
  TProgressLine(const TProgressLine&) = delete;
  TProgressLine& operator=(const TProgressLine&) = delete;

  /// Cuts the text off before the last column: a wrapped line cannot be overwritten.
  void Show(const std::string& text);

  /// Clears the line that is shown, if there is one: something else is about to be printed.
  static void ClearShown();

 private:
  const bool fIsTerminal;
  std::size_t fWidth = 0;
};

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_CLI_PROGRESS_H_
