// SPDX-License-Identifier: Apache-2.0
/// Stands before a namespace and remembers with which options its classes were asked for.
#ifndef TESTS_SUPPORT_RECORDING_NAMESPACE_H_
#define TESTS_SUPPORT_RECORDING_NAMESPACE_H_

#include <qdxcore/interfaces.h>
#include <qdxcore/status.h>

#include <string>
#include <utility>

/// Answers GetClass only, null for a class that the namespace behind it does not have.
class TRecordingNamespace : public NVORNQDX20::ICIMNamespace {
 public:
  using TName = const std::string&;
  using TOptions = NVORNQDX20::TOptionsMap;
  template <typename T>
  using TPtr = boost::shared_ptr<T>;

  explicit TRecordingNamespace(TPtr<NVORNQDX20::ICIMNamespace> real) : fReal(std::move(real)) {}

  TPtr<NVORNQDX20::ICIMClass> GetClass(TName name, TOptions options) const override {
    fAsked += name + (options.count("from") ? "(" + options["from"].ToString(10) + ") " : "() ");
    try {
      return fReal->GetClass(name, {});
    } catch (const NVORNQDX20::TQDXException&) {
      return nullptr;
    }
  }

  /// "Class(option) " for each question so far.
  std::string Asked() const { return std::exchange(fAsked, std::string()); }

  TPtr<NVORNQDX20::ICIMClass> CreateClass(TName, TPtr<NVORNQDX20::ICIMClass>, TOptions) override {
    return nullptr;
  }
  void EnumerateClasses(const NVORNQDX20::TEnumerationCallback<NVORNQDX20::ICIMClass>&,
                        TOptions) const override {}
  TPtr<NVORNQDX20::ICIMQualifierDecl> CreateQualifierDecl(TName, const NVORNQDX20::TCIMValue&,
                                                          std::uint32_t, std::uint32_t,
                                                          TOptions) override {
    return nullptr;
  }
  TPtr<NVORNQDX20::ICIMQualifierDecl> GetQualifierDecl(TName, TOptions) const override {
    return nullptr;
  }
  void EnumerateQualifierDecls(
      const NVORNQDX20::TEnumerationCallback<NVORNQDX20::ICIMQualifierDecl>&,
      TOptions) const override {}

 private:
  TPtr<NVORNQDX20::ICIMNamespace> fReal;
  mutable std::string fAsked;
};

#endif  // TESTS_SUPPORT_RECORDING_NAMESPACE_H_
