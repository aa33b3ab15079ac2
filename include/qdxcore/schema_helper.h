// SPDX-License-Identifier: Apache-2.0
/// Reads the identity of a machine from a namespace that describes it.
#ifndef QDXCORE_SCHEMA_HELPER_H_
#define QDXCORE_SCHEMA_HELPER_H_

#include <qdxcore/config.h>
#include <qdxcore/interfaces.h>
#include <qdxcore/value.h>

#include <cstdint>
#include <string>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

/// Queries for a machine's identity, as static operations without state.
///
/// Queries of a property read it from the only instance of a class, subclasses included, and throw
/// kQDXStatusNotFound if there is not exactly one instance. A value that is null or of the wrong
/// type throws what TCIMValue throws. A class or property that the provider returns as null calls
/// the assertion handler. Exceptions of the provider are passed on.
///
/// The MTM is the machine's type (four characters) and model (three); "xxx" is an unknown model.
class QDXCORE_EXPORT TCIMSchemaHelper {
 public:
  TCIMSchemaHelper() = delete;

  /// "VORNSG_ComputerSystem"
  static const std::string kSystemCreationClassName;
  /// "VORNSG_OperatingSystem"
  static const std::string kOperatingSystemCreationClassName;

  static std::string GetSystemCreationClassName(boost::shared_ptr<ICIMNamespace> ns);
  static std::string GetSystemName(boost::shared_ptr<ICIMNamespace> ns);
  static std::string GetSystemProductName(boost::shared_ptr<ICIMNamespace> ns);

  static std::string GetOperatingSystemCreationClassName(boost::shared_ptr<ICIMNamespace> ns);
  static std::string GetOperatingSystemName(boost::shared_ptr<ICIMNamespace> ns);
  static std::string GetOperatingSystemVersion(boost::shared_ptr<ICIMNamespace> ns);
  /// A value of CIM_OperatingSystem.OSType in the CIM Schema of the DMTF; 36 is Linux.
  static std::uint16_t GetOperatingSystemType(boost::shared_ptr<ICIMNamespace> ns);

  /// Returns whether the first four characters are letters or digits; false for a shorter text.
  static bool IsValidMachineType(const std::string& text);
  /// Like IsValidMachineType, and the next three characters are letters, digits or blanks.
  static bool IsValidMTM(const std::string& text);

  /// Returns the product name unchanged. This query and GetRawSerialNumberString log missing
  /// elements at kLogDebug and throw kQDXStatusNotFound, unlike the other queries.
  static std::string GetRawMTMString(boost::shared_ptr<ICIMNamespace> ns);
  /// Returns the seven characters in the product name: "-[TTTTMMM]-" or "-[TTTT]-" within it, or
  /// the whole name, or after the fixed text "VORN Loftnode k318-[" and before a "]". Ignores
  /// blanks at the end of the name; a model of blanks becomes "xxx". Throws kQDXStatusInvalidFormat
  /// if the name has no MTM.
  static std::string GetMTM(boost::shared_ptr<ICIMNamespace> ns);
  /// The first four characters of the MTM.
  static std::string GetMachineType(boost::shared_ptr<ICIMNamespace> ns);
  /// The last three characters of the MTM.
  static std::string GetModelNumber(boost::shared_ptr<ICIMNamespace> ns);

  static std::string GetRawSerialNumberString(boost::shared_ptr<ICIMNamespace> ns,
                                              TOptionsMap options);
  /// Returns seven letters or digits. Throws kQDXStatusInvalidFormat if the serial number without
  /// blanks at its end is anything else.
  static std::string GetSerialNumber(boost::shared_ptr<ICIMNamespace> ns, TOptionsMap options);

  /// The version of the product that collected the data, for example "1.2.3".
  static std::string GetDataSourceVersion(boost::shared_ptr<ICIMNamespace> ns, TOptionsMap options);
  /// The text before the first ".". This and the next two throw kQDXStatusNotFound without a ".".
  static std::string GetDataSourceMajorVersion(boost::shared_ptr<ICIMNamespace> ns,
                                               TOptionsMap options);
  /// The text after the first ".", one character longer than the major version: "2." of "1.2.3".
  static std::string GetDataSourceMinorVersion(boost::shared_ptr<ICIMNamespace> ns,
                                               TOptionsMap options);
  /// The text after the last ".".
  static std::string GetDataSourceBuildVersion(boost::shared_ptr<ICIMNamespace> ns);
};

}  // namespace NVORNQDX20

#endif  // QDXCORE_SCHEMA_HELPER_H_
