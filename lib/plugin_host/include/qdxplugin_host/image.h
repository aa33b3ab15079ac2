// SPDX-License-Identifier: Apache-2.0
/// A namespace as bytes, for another process of the same build on the same machine.
///
/// Quicker than a document: numbers are in their native form, classes and
/// properties are told by their positions. The reader trusts nothing that it reads.
#ifndef QDXPLUGIN_HOST_IMAGE_H_
#define QDXPLUGIN_HOST_IMAGE_H_

#include <qdxcore/interfaces.h>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace NVORNQDX20::NPluginHost {

/// Writes the qualifier declarations, classes and instances of a namespace of any implementation,
/// and of other namespaces what references name. Calls `write` with the next bytes, often. Returns
/// warnings about what was left out: instances that lack a key, values of another type than
/// declared. Passes on what the namespace and `write` throw.
std::vector<std::string> WriteImage(const ICIMNamespace& ns,
                                    const std::function<void(std::string_view)>& write);

struct TImage {
  boost::shared_ptr<ICIMNamespace> fNamespace;
  /// About what was changed: instances with the keys of another one, bytes that are no text.
  std::vector<std::string> fWarnings = {};
};

/// Reads an image as a namespace of this name. `read` puts up to so many bytes there, and returns
/// how many, 0 at the end. Throws kQDXStatusInvalidPlugin for bytes that are no image, and for an
/// image that needs more than about `maxMemory` bytes; and what the repository throws for objects
/// that cannot be, such as a class with a bad name.
TImage ReadImage(const std::string& name,
                 const std::function<std::size_t(char*, std::size_t)>& read, std::size_t maxMemory);

}  // namespace NVORNQDX20::NPluginHost

#endif  // QDXPLUGIN_HOST_IMAGE_H_
