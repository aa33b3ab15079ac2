// SPDX-License-Identifier: Apache-2.0
/// The build stamp: records what a library that uses the interfaces was built with, so that a
/// program can check it before loading. An ELF note (owner "QDXcore", type 1) for each source file.
///
/// <qdxcore/interfaces.h> includes this header, so there is nothing to do for it. The note
/// survives strip, --gc-sections and link-time optimisation, and has no symbol.
#ifndef QDXCORE_BUILD_STAMP_H_
#define QDXCORE_BUILD_STAMP_H_

#include <qdxcore/config.h>

#include <cstdint>
#include <utility>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20 {

/// The contents of the note. Its layout is the same in every version of the library.
struct TBuildStamp {
  std::uint32_t fMajorVersion;
  std::uint32_t fMinorVersion;
  std::uint32_t fPatchVersion;
  /// Not 0 if Boost's assertions end in the handler of the library (BOOST_ENABLE_ASSERT_HANDLER).
  std::uint32_t fHasAssertHandler;
  /// Not 0 if reference counts are plain numbers (BOOST_SP_DISABLE_THREADS).
  std::uint32_t fHasPlainCounts;
  /// Not 0 if the standard library's containers check themselves (_GLIBCXX_DEBUG) and so have a
  /// layout of their own.
  std::uint32_t fHasDebugContainers;
};

inline constexpr char kBuildStampOwner[] = "QDXcore";
inline constexpr std::uint32_t kBuildStampType = 1;

// Tests what Boost has really done instead of the definitions. <qdxcore/config.h> accepts only 1,
// so a 0 means that the library was built without that header.
inline constexpr TBuildStamp kBuildStamp = {
    QDXCORE_VERSION_MAJOR, QDXCORE_VERSION_MINOR, QDXCORE_VERSION_PATCH,
    // With the handler the checked operators may throw.
    noexcept(*std::declval<const boost::shared_ptr<int>&>()) ? 0 : 1,
#if defined(BOOST_SMART_PTR_DETAIL_SP_COUNTED_BASE_NT_HPP_INCLUDED)
    1,
#else
    0,
#endif
#if defined(_GLIBCXX_DEBUG)
    1
#else
    0
#endif
};

/// An ELF note: three numbers, the owner, the contents.
struct TBuildStampNote {
  std::uint32_t fOwnerSize;
  std::uint32_t fStampSize;
  std::uint32_t fType;
  char fOwner[sizeof(kBuildStampOwner)];
  TBuildStamp fStamp;
};

/// One for each source file, since those of one library may have been built differently.
static constexpr TBuildStampNote kBuildStampNote
#ifdef __clang__
    [[gnu::no_sanitize_address]]  // clang would write unused bytes behind it
#endif
    [[gnu::used, gnu::section(".note.qdxcore"), gnu::aligned(4)]] = {
        sizeof(kBuildStampOwner),
        sizeof(TBuildStamp),
        kBuildStampType,
        {'Q', 'D', 'X', 'c', 'o', 'r', 'e', '\0'},
        kBuildStamp};

}  // namespace NVORNQDX20

#endif  // QDXCORE_BUILD_STAMP_H_
