// SPDX-License-Identifier: Apache-2.0
/// The bytes of an image.
///
/// An image is kImageStart and records, each of which begins with its kind; the last one is kEnd.
/// A number is in groups of seven bits, the lowest first, of which all but the last have the bit
/// 128. A text is its length and its bytes. Namespaces, qualifier declarations and classes have
/// numbers in the order of their records, each kind from 0; namespace 0 is the image's own.
#ifndef LIB_PLUGIN_HOST_IMAGE_FORMAT_H_
#define LIB_PLUGIN_HOST_IMAGE_FORMAT_H_

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace NVORNQDX20::NPluginHost {

/// Ends in the version of the format.
inline constexpr std::string_view kImageStart = "qdx image 1\n";

enum EImageRecord : std::uint8_t {
  kEnd,
  kOtherNamespace,  ///< Name.
  kQualifierDecl,   ///< Name, value, scope, flavor.
  /// Namespace; name; superclass + 1, or 0; qualifiers; the own properties: name, value,
  /// qualifiers; methods: name, type, qualifiers, parameters: name, type, the name of the
  /// referenced class or an empty text, qualifiers. Lists begin with their lengths. A property has
  /// the position of the overridden one, else the next free one.
  kClass,
  kLateDefault,  ///< Class, own property of type reference, content.
  kStaticValue,  ///< Class, property, content.
  /// Class; the positions of the properties whose values its next instances have.
  kInstancesOf,
  kInstance,  ///< The contents.
};

/// A value is its type and its content; a content is its kind, and what follows.
enum EImageContent : std::uint8_t {
  kNull,
  kNullArray,      ///< The maximum size.
  kNullReference,  ///< The class + 1, or 0.
  /// The bytes of a number, a text, the fields of a date-time; of an array the maximum size, the
  /// length, the contents; of a reference the class, the length, and for each key its property and
  /// content.
  kPresent,
};

/// How deep references may be nested, and classes below each other.
inline constexpr std::size_t kMaxImageDepth = 100;

}  // namespace NVORNQDX20::NPluginHost

#endif  // LIB_PLUGIN_HOST_IMAGE_FORMAT_H_
