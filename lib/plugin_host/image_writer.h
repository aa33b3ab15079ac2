// SPDX-License-Identifier: Apache-2.0
/// Writes the image of a namespace: image_writer.cpp the records of values, image_classes.cpp those
/// of what values are declared by, each before the first value that needs it.
#ifndef LIB_PLUGIN_HOST_IMAGE_WRITER_H_
#define LIB_PLUGIN_HOST_IMAGE_WRITER_H_

#include <qdxcore/interfaces.h>
#include <qdxcore/reference.h>
#include <qdxmodel/names.h>
#include <qdxmodel/property_reader.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "image_output.h"

namespace NVORNQDX20::NPluginHost {

class TImageWriter {
 public:
  using TClass = boost::shared_ptr<ICIMClass>;

  TImageWriter(const ICIMNamespace& ns, const std::function<void(std::string_view)>& write)
      : fNamespace(ns), fName(ns.GetName({})), fWrite(write), fClasses(1), fKeyDecls(1) {}

  std::vector<std::string> Write();

 private:
  void Flush();
  void Append(const std::string& record);
  std::uint64_t NumberOf(const ICIMQualifierDecl& decl);
  template <typename TDecl>
  void AppendDecl(std::uint64_t ns, const std::string& name, const TCIMValue& value,
                  const TDecl& decl);

  /// The number of the qualifier Key in another namespace.
  std::uint64_t NumberOfKey(std::uint64_t ns);
  std::uint64_t NumberOf(const std::string& otherNamespace);
  std::uint64_t NumberOf(const TClass& cimClass);

  /// Returns null if this namespace has no such class, or does not tell.
  TClass FindClass(const std::string& name) const;

  /// A class can be its own superclass.
  static void RequireShallow(const TClass& cimClass);

  /// Returns the class after writing it if it is not written yet, with all that it needs before it.
  const TWrittenClass& Written(const TClass& named);
  using TDecls = std::vector<boost::shared_ptr<ICIMPropertyDecl>>;
  /// `decls` are the properties of the class without inherited ones.
  std::string RecordOf(const ICIMClass& cimClass, const TClass& superclass, const TDecls& decls,
                       std::uint64_t ownNumber);
  template <typename TQualified>
  void PutQualifiers(std::string& record, const TQualified& element);
  void PutMethods(std::string& record, const ICIMClass& cimClass);
  void WriteStaticValues(const ICIMClass& cimClass);

  /// Returns null if another namespace has no such key, or needs the class for itself, or if so
  /// many are being written that the stack may end.
  const TWrittenClass* Written(std::uint64_t ns, const TCIMReferenceImpl& reference,
                               const ICIMClass& cimClass);

  /// The default of a property of a class in another namespace, which gets the next number. A
  /// reference has to name a class: that one if its own is not there.
  void PutOtherDefault(std::string& record, std::uint64_t ns, const TCIMValue& value);
  void PutValue(std::string& out, const TCIMValue& value, const std::string& where);

  /// `where` is for the warning if it is left out.
  void PutContent(std::string& out, const TCIMValue& value, TCIMValue::TCIMType type,
                  const std::string& where);
  void PutNull(std::string& out, const TCIMValue& value);

  /// A class does not tell its namespace: one that this namespace has not is of another one.
  std::uint64_t NumberOfReferenced(const TClass& target);

  /// Returns whether the class cannot be written now: it, or a superclass, is being written, and
  /// needs what is being written last; or so many are being written that the stack may end.
  bool IsWaitedFor(const ICIMClass& target) const;

  /// Until then such properties refer to their own class. To write one may write other classes, and
  /// add to the late defaults.
  void WriteLateDefaults();
  void Lose(TLosses& losses, const std::string& where);

  /// The number of the class that is being declared, which is unknown in a rehearsal.
  std::uint64_t OwnNumber();

  /// A class may refer to itself before it is declared.
  bool IsBeingDeclared(const ICIMClass& cimClass) const;
  void PutReference(std::string& out, const TCIMReferenceImpl& reference, const std::string& where);
  /// Appends what PutReference() would. Returns false, and appends nothing, if the reference needs
  /// that.
  bool PutPlainReference(std::string& out, const TPlainReference& reference);
  void WriteInstances(const TClass& cimClass);
  /// Which properties the instances that follow have.
  void AppendColumns(const TWrittenClass& written, const NModel::TPropertyReader& reader);

  const ICIMNamespace& fNamespace;
  const std::string fName;
  const std::function<void(std::string_view)>& fWrite;
  std::string fOut;
  NModel::TNameMap<std::uint64_t> fDecls;
  std::uint64_t fDeclCount = 0;
  NModel::TNameMap<std::uint64_t> fOthers;
  std::vector<NModel::TNameMap<std::unique_ptr<TWrittenClass>>> fClasses;  // by namespace
  std::vector<std::optional<std::uint64_t>> fKeyDecls;                     // by namespace
  std::uint64_t fClassCount = 0;
  struct TLateDefault {
    std::uint64_t fClass;
    boost::shared_ptr<ICIMPropertyDecl> fDecl;
  };
  std::deque<TLateDefault> fLateDefaults;
  bool fWritesLateDefaults = false;
  std::map<std::uint64_t, std::string> fOwnNames;  // by number
  std::vector<TClass> fOwnClasses;                 // in the order of their numbers
  std::vector<std::string> fDeclaring;             // classes that are being written
  static constexpr std::uint64_t kRehearsal = static_cast<std::uint64_t>(-1);
  bool fRehearses = false;       // a record that is not appended
  bool fIsFinal = true;          // what it has is not other than what would be appended
  std::uint64_t fOwnNumber = 0;  // of the last of them
  std::size_t fReferenceDepth = 0;
  std::size_t fOthersDepth = 0;  // of classes in other namespaces that need one another
  TCIMReference fNoReference{nullptr, {}};
  TLosses fUnnamed{"instance that lacks a key was", "instances that lack a key were"};
  TLosses fMistyped{"value of another type than declared was",
                    "values of another type than declared were"};
  TLosses fUnreachable{"reference that cannot be followed was",
                       "references that cannot be followed were"};
};

}  // namespace NVORNQDX20::NPluginHost

#endif  // LIB_PLUGIN_HOST_IMAGE_WRITER_H_
