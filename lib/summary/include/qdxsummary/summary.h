// SPDX-License-Identifier: Apache-2.0
/// The facts about a machine that an operator looks at first, as plain data: equal parts in groups,
/// numbers in the base units that their names tell.
///
///   const TSummary summary = Summarize(*ns);
///   if (summary.fMemory.fFreeSlots.value_or(0) > 0) SuggestMoreMemory();
///
/// An empty text and a number that is missing are not known; fGaps has the reasons.
#ifndef QDXSUMMARY_SUMMARY_H_
#define QDXSUMMARY_SUMMARY_H_

#include <qdxcore/interfaces.h>
#include <qdxdescribe/reading.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace NVORNQDX20::NSummary {

using TNumber = std::optional<std::uint64_t>;

struct TProduct {
  std::string fHostName;
  std::string fManufacturer;
  std::string fName;
  std::string fSerialNumber;
  std::string fShape;  ///< Of the chassis, as in "Rack Mount Chassis".
  std::string fBoardManufacturer;
  std::string fBoard;
};

struct TFirmware {
  std::string fManufacturer;
  std::string fVersion;
  std::string fReleaseDate;  ///< A CIM date-time.
  std::optional<bool> fIsUEFI;
};

struct TOperatingSystem {
  std::string fName;  ///< With the version, as the distribution writes them.
  std::string fKernel;
  std::string fArchitecture;
  std::string fContainer;       ///< Empty if it runs in none.
  std::string fVirtualMachine;  ///< The hypervisor; empty if it runs on none.
  std::string fBootTime;        ///< A CIM date-time.
  TNumber fUptimeSeconds;
  std::array<std::optional<double>, 3> fLoad;  ///< Over 1, 5 and 15 minutes.
  TNumber fProcesses;
};

/// Processors of one model.
struct TProcessors {
  std::size_t fCount = 0;
  std::string fName;
  std::uint64_t fCores = 0;    ///< Of all of them; 0 if not known.
  std::uint64_t fThreads = 0;  ///< Likewise.
  TNumber fMaxHertz;
};

/// Modules of memory that are alike.
struct TModules {
  std::size_t fCount = 0;
  TNumber fBytes;     ///< Of each.
  std::string fType;  ///< As in "DDR4".
  TNumber fTransfersPerSecond;
};

struct TMemory {
  TNumber fBytes;  ///< What is installed, else what the kernel has.
  TNumber fAvailableBytes;
  TNumber fSwapBytes;
  TNumber fFreeSwapBytes;
  TNumber fSlots;  ///< Sockets for modules.
  TNumber fFreeSlots;
  std::vector<TModules> fModules;  ///< Large ones first.
  TNumber fCorrectedErrors;
  TNumber fUncorrectedErrors;
};

/// Disks that are alike.
struct TDisks {
  enum EMedium { kUnknown, kHardDisk, kSolidState };

  std::vector<std::string> fNames;  ///< As in "sda".
  TNumber fBytes;                   ///< Of each; missing without a medium.
  EMedium fMedium = kUnknown;
  std::string fTransport;  ///< As in "sas".
  std::string fModel;
  std::string fState;  ///< Empty if all is well.
};

/// An array of the driver md.
struct TArray {
  std::string fName;
  std::string fLevel;
  std::string fState;
  TNumber fBytes;
  TNumber fMissingMembers;
  std::string fSyncAction;  ///< Empty if nothing is going on.
  TNumber fSyncPercent;
};

/// A file system that keeps its files; a bind mount counts as the same.
struct TFileSystem {
  std::string fMountPoint;
  std::string fType;
  std::string fDevice;
  std::vector<std::string> fDisks;  ///< The drives that it is on, as in "sda".
  TNumber fBytes;
  TNumber fUsedBytes;
  TNumber fAvailableBytes;       ///< To users.
  std::size_t fOtherMounts = 0;  ///< Of the same block device elsewhere.
  bool fIsReadOnly = false;

  /// Returns how much of what users can have is in use, from 0 to 1; none if that is not known.
  /// What is kept for others counts as used only if `fUsedBytes` is not known.
  std::optional<double> UsedPart() const;
};

struct TPort {
  std::string fName;
  std::string fKind;  ///< As in "bridge" if the kernel made it; empty for hardware.
  std::string fTechnology;
  std::string fLinkState;  ///< As in "up".
  TNumber fBitsPerSecond;
  std::string fHardwareAddress;         ///< Hexadecimal digits.
  std::vector<std::string> fAddresses;  ///< With the length of the prefix, IPv4 first.
};

/// Functions of one kind on PCI buses that do the work of a card: bridges and what else belongs to
/// a board is left out.
struct TCards {
  std::vector<std::string> fAddresses;
  std::string fVendor;
  std::string fDevice;
  std::uint16_t fVendorID = 0;
  std::uint16_t fDeviceID = 0;
  std::uint8_t fClassCode = 0;
  std::string fClass;  ///< What it is for, in words.
  std::string fDriver;
  std::vector<std::string> fSlots;
};

struct TSensor {
  std::string fName;
  std::string fChip;
  std::string fState;          ///< As in "Upper Critical".
  TNumber fBaseUnits;          ///< As CIM_NumericSensor.BaseUnits.
  std::int64_t fModifier = 0;  ///< The power of ten of the reading and the limit.
  std::optional<std::int64_t> fReading;
  std::optional<std::int64_t> fLimit;  ///< The one that the reading exceeds.
};

struct TSensors {
  std::size_t fCount = 0;
  std::vector<TSensor> fOutOfRange;
  std::optional<TSensor> fWarmest;
};

struct TBattery {
  std::string fName;
  std::string fStatus;
  TNumber fChargePercent;
  TNumber fHealthPercent;
};

/// Power supplies that are alike.
struct TPowerSupplies {
  std::size_t fCount = 0;
  std::string fModel;
  TNumber fWatts;
  std::string fFault;  ///< As in "unplugged"; empty if nothing is known to be wrong.
};

/// Something that is not known.
struct TGap {
  enum EKind {
    kNotThere,   ///< The machine does not have it or does not tell.
    kNeedsRoot,  ///< It was refused; root may read it.
    kFailed,     ///< Another error stood in the way.
    kLeftOut     ///< Nobody asked for it.
  };

  EKind fKind = kNotThere;
  std::string fReason;                 ///< The first one.
  std::vector<std::string> fSubjects;  ///< As in "memory modules".
};

/// Returns what kind of gap has this reason.
TGap::EKind KindOf(const NDescribe::TReason& reason);

struct TSummary {
  TProduct fProduct;
  TFirmware fFirmware;
  TOperatingSystem fOperatingSystem;
  std::vector<TProcessors> fProcessors;
  TMemory fMemory;
  std::vector<TDisks> fDisks;
  std::vector<TArray> fArrays;
  std::vector<TFileSystem>
      fFileSystems;           ///< The root, then those that are writable, fullest first.
  std::vector<TPort> fPorts;  ///< With addresses first; without the loopback.
  std::vector<TCards> fCards;
  TSensors fSensors;
  std::vector<TBattery> fBatteries;
  std::vector<TPowerSupplies> fPowerSupplies;
  std::vector<TGap> fGaps;  ///< One for each kind and reason.

  /// Returns whether anything but gaps is known.
  bool DescribesMachine() const;
};

/// The classes that Summarize() reads, for the option "classes" of providers.
const std::vector<std::string>& ClassesOfSummary();

/// Passes on what the namespace throws, except for classes that it does not have. Of the parts that
/// were left out, the namespace has no classes.
TSummary Summarize(const ICIMNamespace& ns, const std::vector<std::string>& partsLeftOut = {});

}  // namespace NVORNQDX20::NSummary

#endif  // QDXSUMMARY_SUMMARY_H_
