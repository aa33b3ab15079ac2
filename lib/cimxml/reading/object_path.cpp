// SPDX-License-Identifier: Apache-2.0
#include "object_path.h"

#include <qdxmodel/names.h>

#include <algorithm>

namespace NVORNQDX20::NCIMXML {
namespace {

bool IsPath(const TElement& element) {
  return element.Is("CLASSPATH") || element.Is("LOCALCLASSPATH") || element.Is("INSTANCEPATH") ||
         element.Is("LOCALINSTANCEPATH") || element.Is("OBJECTPATH");
}

/// Appends the parts of a name between slashes, without empty ones.
void AppendParts(std::string_view name, std::string& joined) {
  while (!name.empty()) {
    const std::size_t slash = std::min(name.find('/'), name.size());
    if (slash != 0 && !joined.empty()) joined += '/';
    joined += name.substr(0, slash);
    name.remove_prefix(std::min(slash + 1, name.size()));
  }
}

std::string JoinedNames(const TElement& localPath) {
  std::string joined;
  for (const TElement& part : localPath.fChildren) {
    if (!part.Is("NAMESPACE")) localPath.RefuseChild(part);
    AppendParts(part.Get("NAME"), joined);
  }
  if (joined.empty()) localPath.Refuse("a namespace without name");
  return joined;
}

bool IsKeyValue(const TElement& element) {
  return element.Is("KEYVALUE") || element.Is("VALUE.REFERENCE");
}

}  // namespace

std::optional<std::string> NamespaceNameOf(const TElement& element) {
  if (element.Is("LOCALNAMESPACEPATH")) return JoinedNames(element);
  for (const TElement& child : element.fChildren) {
    if (child.Is("LOCALNAMESPACEPATH")) return JoinedNames(child);
    if (child.Is("NAMESPACEPATH") || IsPath(child)) return NamespaceNameOf(child);
  }
  if (element.Is("NAMESPACEPATH")) element.Refuse("a path without namespace");
  return std::nullopt;
}

const TElement* FindName(const TElement& element) {
  for (const TElement& child : element.fChildren) {
    if (child.Is("INSTANCENAME") || child.Is("CLASSNAME")) return &child;
    if (IsPath(child)) return FindName(child);
  }
  return nullptr;
}

const TElement* FindHost(const TElement& element) {
  if (element.Is("NAMESPACEPATH")) return element.Child("HOST");
  for (const TElement& child : element.fChildren) {
    if (child.Is("NAMESPACEPATH") || IsPath(child)) return FindHost(child);
  }
  return nullptr;
}

const TElement& NameOf(const TElement& reference) {
  const TElement* const name = FindName(reference);
  if (name == nullptr) reference.Refuse("a reference that names nothing");
  return *name;
}

const std::string& ClassNameOf(const TElement& name) {
  return name.Get(name.Is("CLASSNAME") ? "NAME" : "CLASSNAME");
}

bool IsProperty(const TElement& element) { return element.fName.substr(0, 8) == "PROPERTY"; }

bool NamesClass(const TElement& property) {
  return property.Find("REFERENCECLASS") != nullptr || property.Child("VALUE.REFERENCE") != nullptr;
}

bool IsQualified(const TElement& element, std::string_view qualifier) {
  return std::any_of(
      element.fChildren.begin(), element.fChildren.end(), [qualifier](const TElement& child) {
        const std::string* const name = child.Is("QUALIFIER") ? child.Find("NAME") : nullptr;
        const TElement* const value = child.Child("VALUE");
        return name != nullptr && value != nullptr && NModel::EqualIgnoringCase(*name, qualifier) &&
               NModel::EqualIgnoringCase(value->fText, "true");
      });
}

void GetKeyBindings(const TElement& name, std::vector<TKeyBinding>& bindings) {
  bindings.clear();
  for (const TElement& child : name.fChildren) {
    if (IsKeyValue(child) && name.fChildren.size() == 1) {
      bindings.push_back({nullptr, &child});
      continue;
    }
    if (!child.Is("KEYBINDING")) name.RefuseChild(child);
    const TElement& value = child.OnlyChild();
    if (!IsKeyValue(value)) child.RefuseChild(value);
    bindings.push_back({&child.Get("NAME"), &value});
  }
}

std::vector<TKeyBinding> KeyBindingsOf(const TElement& name) {
  std::vector<TKeyBinding> bindings;
  GetKeyBindings(name, bindings);
  return bindings;
}

}  // namespace NVORNQDX20::NCIMXML
