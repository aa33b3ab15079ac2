// SPDX-License-Identifier: Apache-2.0
// A consumer that writes every value of every instance of a namespace as comma-separated values.
#include <qdxcore/interfaces.h>
#include <qdxcore/logger.h>

#include <fstream>
#include <iostream>
#include <string>

using namespace NVORNQDX20;

namespace {

/// Returns the text in quotes, with quotes inside doubled (RFC 4180).
std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char character : text) quoted.append(character == '"' ? 2 : 1, character);
  return quoted + "\"";
}

class TCSVWriter {
 public:
  explicit TCSVWriter(std::ostream& output) : fOutput(output) {}

  void WriteNamespace(const ICIMNamespace& ns) {
    fOutput << "Class,Instance,Property,Value\n";
    ns.EnumerateClasses(
        [this](boost::shared_ptr<ICIMClass> root) {
          WriteClass(*root);
          root->EnumerateSubclasses(
              [this](boost::shared_ptr<ICIMClass> subclass) {
                WriteClass(*subclass);
                return true;
              },
              true, {});
          return true;
        },
        {});
  }

 private:
  void WriteClass(const ICIMClass& cimClass) {
    const std::string start = Quoted(cimClass.GetName({})) + ",";
    int number = 0;
    cimClass.EnumerateInstances(
        [&](boost::shared_ptr<ICIMInstance> instance) {
          WriteInstance(start + std::to_string(++number) + ",", *instance);
          return true;
        },
        false, {});
  }

  void WriteInstance(const std::string& start, const ICIMInstance& instance) {
    instance.EnumerateProperties(
        [&](boost::shared_ptr<ICIMProperty> property) {
          fOutput << start << Quoted(property->GetDecl()->GetName()) << ",";
          const TCIMValue& value = property->GetValue();
          if (!value.IsNull()) fOutput << Quoted(value.ToString(10));
          fOutput << "\n";
          return true;
        },
        {});
  }

  std::ostream& fOutput;
};

class TCSVConsumer : public INamespaceConsumer {
 public:
  const std::string& GetName(TOptionsMap) const override { return fName; }

  /// Option "file" names the file to write, "-" is standard output. If option "more" is true,
  /// another namespace for the same file follows.
  void Consume(boost::shared_ptr<ICIMNamespace> ns, TOptionsMap options) override {
    const auto option = options.find("file");
    if (option == options.end()) {
      LogErrorAndThrow(kQDXStatusRequiredContextMissing, {"csv needs the option \"file\""});
    }
    const std::string name = option->second;
    const auto mode = fContinues ? std::ios::app : std::ios::trunc;
    fContinues = false;  // after a failure the next call starts the file again
    std::ofstream file;
    if (name != "-") file.open(name, std::ios::binary | mode);
    std::ostream& output = name == "-" ? std::cout : file;
    TCSVWriter(output).WriteNamespace(*ns);
    // Errors of buffered writes appear only now.
    if (!output.flush()) LogErrorAndThrow(kQDXStatusFileSystemError, {"cannot write ", name});
    const auto more = options.find("more");
    fContinues = more != options.end() && static_cast<bool>(more->second);
  }

 private:
  const std::string fName = "csv";
  bool fContinues = false;
};

}  // namespace

/// The core calls the service's name followed by "_CreateINamespaceConsumer".
extern "C" QDXCORE_EXPORT INamespaceConsumer* csv_CreateINamespaceConsumer() {
  return new TCSVConsumer;
}
