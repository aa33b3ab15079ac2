// SPDX-License-Identifier: Apache-2.0
/// Version, export macro and the build conditions that every user of the library must share.
///
/// Include any other header of the library instead: each one includes this.
#ifndef QDXCORE_CONFIG_H_
#define QDXCORE_CONFIG_H_

#define QDXCORE_VERSION_MAJOR 0
#define QDXCORE_VERSION_MINOR 1
#define QDXCORE_VERSION_PATCH 0
#define QDXCORE_VERSION "0.1.0"

#if !defined(__linux__) || !defined(__x86_64__) || !defined(__LP64__)
#error "libqdxcore is built for 64-bit x86 Linux only."
#endif

#if __cplusplus < 201703L
#error "libqdxcore needs C++17: compile with -std=c++17 or later."
#endif

// Both definitions change inline code of Boost that the library and its users share. A program
// built without them would bring its own operator-> and its own reference counts, and end in
// abort() where the library expects an exception.
#if !defined(BOOST_ENABLE_ASSERT_HANDLER)
#error "Define BOOST_ENABLE_ASSERT_HANDLER: link qdxcore::qdxcore, or use `pkg-config --cflags`."
#endif
#if !defined(BOOST_SP_DISABLE_THREADS)
#error "Define BOOST_SP_DISABLE_THREADS: link qdxcore::qdxcore, or use `pkg-config --cflags`."
#endif
#if defined(BOOST_DISABLE_ASSERTS) || defined(BOOST_ENABLE_ASSERT_DEBUG_HANDLER)
#error "BOOST_DISABLE_ASSERTS and BOOST_ENABLE_ASSERT_DEBUG_HANDLER switch the shared checks off."
#endif

#include <utility>

#include <boost/shared_ptr.hpp>

// Boost reads each definition once, in the first of its headers that depends on it. Both checks see
// whether shared_ptr was included before the definition; a header of Boost without shared_ptr, such
// as boost/function.hpp, passes. The plain counters have a header of their own; with the handler,
// the checked operators may throw.
#if !defined(BOOST_SMART_PTR_DETAIL_SP_COUNTED_BASE_NT_HPP_INCLUDED)
#error "Define BOOST_SP_DISABLE_THREADS before any header of Boost is included."
#endif
static_assert(!noexcept(*std::declval<const boost::shared_ptr<int>&>()),
              "Define BOOST_ENABLE_ASSERT_HANDLER before any header of Boost is included.");

/// Exports a symbol from the shared library; all others are hidden.
#define QDXCORE_EXPORT __attribute__((visibility("default")))

#endif  // QDXCORE_CONFIG_H_
