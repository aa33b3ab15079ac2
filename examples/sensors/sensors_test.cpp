// SPDX-License-Identifier: Apache-2.0
// Describes the machine whose files are below a folder, and compares the result with what is known.
#include <qdxdescribe/missing_values.h>

#include <iostream>

#include "sensors.cpp"

int main(int, char** arguments) {
  const TMachine machine(TRequest{arguments[1], {}});
  const auto ns = Describe(TDescriber("test", "test"), AllClasses(), machine);
  std::string speeds;
  ns->GetClass("Example_Fan", {})
      ->EnumerateInstances(
          [&speeds](const boost::shared_ptr<ICIMInstance>& fan) {
            speeds += fan->GetProperty("Speed", {})->GetValue().ToString(10) + " ";
            return true;
          },
          false, {});
  const TMissingReasons reasons = ReadMissingReasons(*ns);
  const bool isExplained = reasons.count({"Example_Thermometer", "hwmon0/temp2", "Type"}) == 1;
  std::cout << "speeds: " << speeds << (isExplained ? "" : "without a reason") << '\n';
  return speeds == "1180 " && isExplained ? 0 : 1;
}
