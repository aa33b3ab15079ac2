// SPDX-License-Identifier: Apache-2.0
/// Loading a plug-in where it can do no harm.
#ifndef QDX_PLUGIN_TRIAL_H_
#define QDX_PLUGIN_TRIAL_H_

#include <functional>
#include <string>

namespace NVORNQDX20 {

/// Runs `load` in a process of its own first: what an initialiser of the library throws, or breaks,
/// would end this one. Logs kQDXStatusInvalidPlugin with the file's name and throws it if that
/// process dies or takes longer than ten seconds; what `load` throws does not count, since it can
/// be caught.
void TryPlugin(const std::string& file, const std::function<void()>& load);

}  // namespace NVORNQDX20

#endif  // QDX_PLUGIN_TRIAL_H_
