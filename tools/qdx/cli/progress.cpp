// SPDX-License-Identifier: Apache-2.0
#include "progress.h"

#include <qdxmodel/classes.h>

#include <algorithm>
#include <cstdio>

#include <unistd.h>

#include <boost/smart_ptr/make_shared.hpp>

#include "terminal.h"

namespace NVORNQDX20 {
namespace {

/// One line of standard error that is overwritten. Cleared with blanks, which works on every
/// terminal.
class TProgressLine {
 public:
  ~TProgressLine() { Show(""); }

  /// Cuts the line off before the last column: a wrapped line cannot be overwritten.
  void Show(const std::string& text) {
    const std::size_t limit = TerminalWidth(STDERR_FILENO) - 1;
    std::string line = CutToWidth(ForTerminal(text), limit);
    const std::size_t width = WidthOf(line);
    const std::size_t former = std::min(fWidth, limit);
    if (width < former) line.append(former - width, ' ');
    std::fputs(("\r" + line + (width == 0 ? "\r" : "")).c_str(), stderr);
    fWidth = width;
  }

 private:
  std::size_t fWidth = 0;
};

std::size_t CountInstances(const ICIMClass& cimClass) {
  std::size_t count = 0;
  NModel::ForEachInstance(cimClass, [&count](const ICIMInstance&) { ++count; });
  return count;
}

/// The instances of a class are counted when the next class begins.
class TCountingNamespace final : public ICIMNamespace {
 public:
  TCountingNamespace(const boost::shared_ptr<ICIMNamespace>& target, const std::string& label)
      : fTarget(target), fLabel(label) {}

  const std::string& GetName(TOptionsMap options) const override {
    return fTarget->GetName(options);
  }
  boost::shared_ptr<ICIMClass> CreateClass(const std::string& name,
                                           boost::shared_ptr<ICIMClass> superclass,
                                           TOptionsMap options) override {
    if (fLastClass) fInstances += CountInstances(*fLastClass);
    fLine.Show(fLabel + ": " + std::to_string(fClasses) + " classes, " +
               std::to_string(fInstances) + " instances");
    fLastClass = fTarget->CreateClass(name, superclass, options);
    ++fClasses;
    return fLastClass;
  }
  boost::shared_ptr<ICIMClass> GetClass(const std::string& name,
                                        TOptionsMap options) const override {
    return fTarget->GetClass(name, options);
  }
  void EnumerateClasses(const TEnumerationCallback<ICIMClass>& callback,
                        TOptionsMap options) const override {
    fTarget->EnumerateClasses(callback, options);
  }
  boost::shared_ptr<ICIMQualifierDecl> CreateQualifierDecl(const std::string& name,
                                                           const TCIMValue& defaultValue,
                                                           std::uint32_t scope,
                                                           std::uint32_t flavor,
                                                           TOptionsMap options) override {
    return fTarget->CreateQualifierDecl(name, defaultValue, scope, flavor, options);
  }
  boost::shared_ptr<ICIMQualifierDecl> GetQualifierDecl(const std::string& name,
                                                        TOptionsMap options) const override {
    return fTarget->GetQualifierDecl(name, options);
  }
  void EnumerateQualifierDecls(const TEnumerationCallback<ICIMQualifierDecl>& callback,
                               TOptionsMap options) const override {
    fTarget->EnumerateQualifierDecls(callback, options);
  }

 private:
  boost::shared_ptr<ICIMNamespace> fTarget;
  std::string fLabel;
  TProgressLine fLine;
  boost::shared_ptr<ICIMClass> fLastClass;
  std::size_t fClasses = 0;
  std::size_t fInstances = 0;
};

}  // namespace

boost::shared_ptr<ICIMNamespace> WithProgress(const boost::shared_ptr<ICIMNamespace>& target,
                                              const std::string& label) {
  if (::isatty(STDERR_FILENO) == 0) return target;
  return boost::make_shared<TCountingNamespace>(target, label);
}

}  // namespace NVORNQDX20
