// SPDX-License-Identifier: Apache-2.0
/// Documents: namespaces in a file.
#ifndef TOOLS_QDX_INPUT_DOCUMENT_H_
#define TOOLS_QDX_INPUT_DOCUMENT_H_

#include <qdxcimxml/document_reader.h>
#include <qdxcore/interfaces.h>
#include <qdxplugin_host/consumer_host.h>

#include <optional>
#include <set>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "cli/failure.h"
#include "machine.h"

namespace NVORNQDX20 {

using TNamespaces = std::vector<boost::shared_ptr<ICIMNamespace>>;

/// Returns the namespaces of a document in its order; "-" is standard input. Prints the reader's
/// warnings to standard error, and then sets `incomplete`. The option --memory sets the limits of
/// the reader. With `instancesOf`, only instances of these classes and their subclasses are there,
/// and the reasons of missing values. Throws a TCommandFailure if the document cannot be read.
TNamespaces OpenDocument(const std::string& file, const TArguments& arguments, bool& incomplete,
                         const std::optional<std::vector<std::string>>& instancesOf = {});

struct TCheckedDocument {
  std::vector<NCIMXML::TDefect> fDefects;
  TNamespaces fNamespaces;  ///< Empty if a defect ends the reading.
};

/// Reads a document with all its defects, and prints nothing. Otherwise as OpenDocument().
TCheckedDocument CheckDocument(const std::string& file, const TArguments& arguments);

/// Writes namespaces to files with a consumer plug-in.
class TPluginWriter {
 public:
  static const char* const kDefaultConsumer;

  /// The consumer gets `options` besides those that name the file. Throws a TCommandFailure if the
  /// plug-in cannot be used.
  TPluginWriter(const std::string& consumer, const NPluginHost::TWorkerLimits& limits,
                TOptionsMap options = {});

  /// Writes one document; "-" is GetOutput(). The document writer compresses if the name ends in
  /// ".gz". Messages name the file `shownAs`; the plug-in's warnings are printed to standard error,
  /// each once even if the document is written again.
  /// Returns the first namespace that the consumer refused, if any: then the file is incomplete,
  /// and the caller can truncate it and write again without that namespace. Throws a
  /// TCommandFailure if the file cannot be written, or if the consumer did not come back.
  std::optional<TProviderFailure> Write(const std::vector<TMachineNamespace>& namespaces,
                                        const std::string& file, const std::string& shownAs);

  /// Throws a TCommandFailure if the file, or for "-" the output, is empty: a document without a
  /// namespace looks like a success.
  void RequireContents(const std::string& file, const std::string& shownAs) const;

  /// Returns the file with what was written last as "-".
  int GetOutput() const { return fOutput.Get(); }
  /// Returns whether the plug-in warned that the document is not complete.
  bool HasWarned() const { return !fWarnings.empty(); }

 private:
  [[noreturn]] void FailToLoad(const TExplainedException& failure) const;
  TExplainedException Blame(const TExplainedException& failure, const std::string& shownAs) const;

  const NPluginHost::TPluginFile fPlugin;
  NPluginHost::TWorkerLimits fLimits;
  const TOptionsMap fOptions;
  TDescriptor fOutput;
  std::set<std::string> fWarnings;  // printed ones, which the next attempt does not print again
};

}  // namespace NVORNQDX20

#endif  // TOOLS_QDX_INPUT_DOCUMENT_H_
