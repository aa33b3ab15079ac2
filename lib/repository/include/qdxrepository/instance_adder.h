// SPDX-License-Identifier: Apache-2.0
/// Adds many instances to a class of a repository namespace: by the positions of the properties
/// instead of their names, and without a TCIMValue for a text or a number.
#ifndef QDXREPOSITORY_INSTANCE_ADDER_H_
#define QDXREPOSITORY_INSTANCE_ADDER_H_

#include <qdxcore/interfaces.h>

#include <cstddef>
#include <memory>
#include <string_view>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

/// A position is that of the declaration in ICIMClass::EnumeratePropertyDecls, from 0. A property
/// that is not set has the value of its class.
class TInstanceAdder {
 public:
  /// Throws kQDXStatusInvalidClass if the class is not a committed class of a namespace of
  /// MakeRepositoryNamespace(), or abstract.
  explicit TInstanceAdder(const boost::shared_ptr<ICIMClass>& cimClass);
  ~TInstanceAdder();

  /// Starts an instance, in place of one that was not committed.
  void Begin();
  /// Each returns false, and sets nothing, if the declared type is another one. REQUIRES: Begin()
  /// was called, no Commit() failed since, and the class has the property; after Commit() it is no
  /// key.
  bool Set(std::size_t position, const TCIMValue& value);
  bool SetText(std::size_t position, std::string_view text);
  /// `bytes` are those of the native type, in the order of this machine; as many as it has.
  bool SetNumber(std::size_t position, std::string_view bytes);
  /// Sets what Set() does with a reference to `target`: its class and keys. Also returns false, and
  /// sets nothing, unless `target` is a committed instance of the same namespace.
  bool SetReference(std::size_t position, const ICIMInstance& target);
  void SetNull(std::size_t position);
  bool SetTime(std::size_t position, const TCIMDateTime& time);
  /// Returns the instance that was started, also when it is committed; null before Begin() and
  /// after a Commit() that failed.
  boost::shared_ptr<ICIMInstance> GetInstance() const;
  /// Adds the instance. Returns false, and adds nothing, if one with the same keys exists. Throws
  /// kQDXStatusInvalidInstance if a key is null.
  bool Commit();

 private:
  struct TParts;
  const std::unique_ptr<TParts> fParts;
};

}  // namespace NVORNQDX20

#endif  // QDXREPOSITORY_INSTANCE_ADDER_H_
