// SPDX-License-Identifier: Apache-2.0
/// Who a machine is, read from a namespace that describes it.
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
/// Those that read a property take it from the single instance of a class, subclasses included, and
/// throw kQDXStatusNotFound if the number of instances is not one. A value that is null or of the
/// wrong type throws what TCIMValue throws, a class or property that comes as null ends in the
/// assertion handler, and what the provider throws passes out.
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

  /// Whether the first four characters are letters or digits; a text that has fewer is invalid.
  static bool IsValidMachineType(const std::string& text);
  /// The same, and the next three letters, digits or blanks.
  static bool IsValidMTM(const std::string& text);

  /// The product name as it stands. Unlike the other queries, this and GetRawSerialNumberString
  /// log at kLogDebug what is missing, and throw kQDXStatusNotFound for it.
  static std::string GetRawMTMString(boost::shared_ptr<ICIMNamespace> ns);
  /// The seven characters that the product name carries: as "-[TTTTMMM]-" or "-[TTTT]-" within it,
  /// or as the whole of it, or behind the fixed name "VORN Loftnode k318-[" and before a "]".
  /// Blanks at the end of the name do not count; a model of blanks becomes "xxx". Throws
  /// kQDXStatusInvalidFormat if it carries none.
  static std::string GetMTM(boost::shared_ptr<ICIMNamespace> ns);
  /// The first four characters of the MTM.
  static std::string GetMachineType(boost::shared_ptr<ICIMNamespace> ns);
  /// The last three characters of the MTM.
  static std::string GetModelNumber(boost::shared_ptr<ICIMNamespace> ns);

  static std::string GetRawSerialNumberString(boost::shared_ptr<ICIMNamespace> ns,
                                              TOptionsMap options);
  /// Seven letters or digits; throws kQDXStatusInvalidFormat if the serial number, less blanks at
  /// its end, is something else.
  static std::string GetSerialNumber(boost::shared_ptr<ICIMNamespace> ns, TOptionsMap options);

  /// The version of the product that collected the data, for example "1.2.3".
  static std::string GetDataSourceVersion(boost::shared_ptr<ICIMNamespace> ns, TOptionsMap options);
  /// Up to the first "."; like the next two it throws kQDXStatusNotFound if there is none.
  static std::string GetDataSourceMajorVersion(boost::shared_ptr<ICIMNamespace> ns,
                                               TOptionsMap options);
  /// What follows the first ".", one character more than the major version has: "2." of "1.2.3".
  static std::string GetDataSourceMinorVersion(boost::shared_ptr<ICIMNamespace> ns,
                                               TOptionsMap options);
  /// After the last ".".
  static std::string GetDataSourceBuildVersion(boost::shared_ptr<ICIMNamespace> ns);
};

}  // namespace NVORNQDX20

#endif  // QDXCORE_SCHEMA_HELPER_H_
