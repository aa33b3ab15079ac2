// SPDX-License-Identifier: Apache-2.0
// The verb odd.
#include <qdxdisplay/names.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "chosen_class.h"
#include "format/answer.h"
#include "opened_store.h"
#include "questions/odd.h"
#include "verbs.h"

namespace NVORNQDX20::NStore {
namespace {

using TColumn = TAnswerColumn;

std::string NameOf(const TModel& model) {
  if (!model.HasName()) return "an unknown product";
  return ShortName(model.fMaker + (model.fMaker.empty() || model.fName.empty() ? "" : " ") +
                   model.fName);
}

/// What a person reads of a value, or of an object as a whole.
TJSON ShownOf(const TOddFact& fact, const std::optional<std::string>& value) {
  if (fact.fProperty.empty()) return value ? "has it" : "lacks it";
  return OrNull(value);
}

/// What the host is, compared with the others.
const char* DifferenceOf(const TOddFact& fact, const TOddFact::THost& host) {
  if (!host.fValue) return "missing";
  return fact.fUsual ? "value" : "additional";
}

void AddRows(const TModel& model, const std::vector<TOddFact>& facts, TAnswer& answer) {
  for (const TOddFact& fact : facts) {
    const std::string counts =
        std::to_string(fact.fUsualHosts) + " of " + std::to_string(fact.fJudgedHosts);
    for (const TOddFact::THost& host : fact.fOdd) {
      answer.fRows.push_back(
          {host.fName, OrNull(model.fMaker), OrNull(model.fName), fact.fNamespace, fact.fClass,
           fact.fObject,
           ShortClassName(fact.fClass) + (fact.fObject.empty() ? "" : " " + fact.fObject),
           OrNull(fact.fProperty), DifferenceOf(fact, host), OrNull(host.fValue),
           ShownOf(fact, host.fValue), OrNull(fact.fUsual), ShownOf(fact, fact.fUsual),
           fact.fUsualHosts, fact.fJudgedHosts, counts});
    }
  }
}

TJSON AsJSON(const TModel& model) {
  TJSON hosts = TJSON::array();
  for (const TFleetHost* const host : model.fHosts) hosts.push_back(host->fName);
  return {{"manufacturer", OrNull(model.fMaker)},
          {"model", OrNull(model.fName)},
          {"isJudged", model.IsJudged()},
          {"hosts", hosts}};
}

TAnswer EmptyAnswer() {
  return {"odd",
          {{"host", "Host", TColumn::kAll, TColumn::kName},
           {"manufacturer", "", TColumn::kPrograms},
           {"model", "Model", TColumn::kAll, TColumn::kName},
           {"namespace", "", TColumn::kPrograms},
           {"class", "", TColumn::kPrograms},
           {"object", "", TColumn::kPrograms},
           {"", "Object", TColumn::kPeople, TColumn::kName},
           {"property", "Property"},
           {"difference", "", TColumn::kPrograms},
           {"value", "", TColumn::kPrograms},
           {"", "Value", TColumn::kPeople},
           {"usual", "", TColumn::kPrograms},
           {"", "Usual", TColumn::kPeople},
           {"usualHosts", "", TColumn::kPrograms},
           {"judgedHosts", "", TColumn::kPrograms},
           {"", "Hosts", TColumn::kPeople}},
          {}};
}

EExitCode Odd(const TArguments& arguments) {
  RequireOneForm(arguments);
  const auto database = OpenStoreOf(arguments.GetOperand(0), EAccess::kExisting);
  try {
    const TTransaction oneState(*database, TTransaction::kReading);
    const std::string className = ChosenClass(*database, arguments.GetOperand(1));
    const std::vector<TFleetHost> fleet = ReadFleet(*database);
    TAnswer answer = EmptyAnswer();
    TJSON models = TJSON::array();
    std::size_t judged = 0;
    for (const TModel& model : ModelsOf(fleet)) {
      models.push_back(AsJSON(model));
      if (!model.IsJudged()) {
        answer.fRemarks.push_back("not judged: " + std::to_string(model.fHosts.size()) +
                                  (model.fHosts.size() == 1 ? " host of " : " hosts of ") +
                                  NameOf(model));
        continue;
      }
      judged += model.fHosts.size();
      AddRows(model, FindOdd(*database, model, className), answer);
    }
    answer.fOthers["models"] = std::move(models);
    if (answer.fRows.empty()) {
      answer.fRemarks.insert(answer.fRemarks.begin(),
                             "nothing is odd among " + std::to_string(judged) + " hosts");
    }
    database->RequireSameState();
    WriteAnswer(answer, arguments);
  } catch (const TDatabaseError& error) {
    FailOnStore(database->GetLocation(), error);
  }
  return kExitDone;
}

}  // namespace

TVerb OddVerb() {
  return {"odd",
          "Lists which hosts differ from most others of their model, and in what.",
          "The hosts of a maker and a product are compared with each other if there are at least\n"
          "three. Not compared is what changes by itself, what is secret, such as serial numbers\n"
          "and addresses, of which each host has its own, and what a host's last document could\n"
          "not see and no earlier one showed. CLASS is the name of a class, or a word such as\n"
          "'disk'; associations are left out unless CLASS names one.\n",
          FormOptions(),
          Odd,
          {{"DB"}, {"CLASS", TOperandSpec::kOptional}}};
}

}  // namespace NVORNQDX20::NStore
