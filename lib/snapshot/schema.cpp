// SPDX-License-Identifier: Apache-2.0
#include <qdxsnapshot/schema.h>

#include <qdxcore/reference_parameter.h>
#include <qdxmodel/classes.h>
#include <qdxmodel/names.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

namespace NVORNQDX20 {
namespace {

using TClass = boost::shared_ptr<ICIMClass>;

/// Without the one that the kinds of strings are made of.
template <typename TQualified>
std::vector<TQualifierValue> QualifiersOf(const TQualified& element) {
  std::vector<TQualifierValue> qualifiers;
  element.EnumerateQualifiers([&qualifiers](const boost::shared_ptr<ICIMQualifier>& each) {
    const std::string& name = each->GetDecl()->GetName();
    if (!NDescribe::IsStringKindQualifier(name)) qualifiers.push_back({name, each->GetValue()});
    return true;
  });
  return qualifiers;
}

bool IsTrue(const std::vector<TQualifierValue>& qualifiers, const char* name) {
  return std::any_of(qualifiers.begin(), qualifiers.end(), [name](const TQualifierValue& each) {
    return NModel::EqualIgnoringCase(each.fName, name) && each.fValue == TCIMValue(true);
  });
}

/// Returns the class and its superclasses, beginning with the root class.
std::vector<TClass> LineOf(const TClass& cimClass) {
  std::vector<TClass> line;
  for (TClass each = cimClass; each; each = NModel::SuperclassOf(*each)) line.push_back(each);
  std::reverse(line.begin(), line.end());
  return line;
}

/// The nearest declarations of properties or methods. A class may enumerate what it inherits: then
/// the object is the one that its superclass has.
template <typename TDecl>
class TFeatures {
 public:
  struct TFeature {
    boost::shared_ptr<TDecl> fDecl;
    TFeatureOrigin fOrigin;
    std::size_t fLevel;  // of the class, 0 for the root class
    bool fIsKey = false;
    /// A pointer, since features are moved, and assigning a value of another type can fail.
    std::shared_ptr<const TCIMValue> fStatic = nullptr;
  };

  /// Adds a declaration of a class below all those before.
  TFeature& Add(const boost::shared_ptr<TDecl>& decl, const std::string& className,
                std::size_t level) {
    const auto [found, isNew] = fPositions.try_emplace(decl->GetName(), fFeatures.size());
    if (isNew) {
      fFeatures.push_back({decl, {className, ""}, level});
    } else if (fFeatures[found->second].fDecl != decl) {
      fFeatures[found->second].fDecl = decl;
      Redeclare(fFeatures[found->second], className, level);
    }
    return fFeatures[found->second];
  }

  /// Returns null if no class has declared it.
  TFeature* Find(const std::string& name) {
    const auto found = fPositions.find(name);
    return found == fPositions.end() ? nullptr : &fFeatures[found->second];
  }

  static void Redeclare(TFeature& feature, const std::string& className, std::size_t level) {
    if (feature.fLevel == level) return;
    feature.fOrigin = {className, feature.fOrigin.fClass};
    feature.fLevel = level;
  }

  /// Moves out the features, those of the last class first.
  std::vector<TFeature> Take() {
    std::stable_sort(
        fFeatures.begin(), fFeatures.end(),
        [](const TFeature& left, const TFeature& right) { return left.fLevel > right.fLevel; });
    return std::move(fFeatures);
  }

 private:
  std::vector<TFeature> fFeatures;
  NModel::TNameMap<std::size_t> fPositions;
};

std::vector<TPropertySchema> ReadProperties(const std::vector<TClass>& line) {
  using TProperties = TFeatures<ICIMPropertyDecl>;
  TProperties features;
  for (std::size_t level = 0; level < line.size(); ++level) {
    const std::string& className = line[level]->GetName({});
    line[level]->EnumeratePropertyDecls(
        [&](const boost::shared_ptr<ICIMPropertyDecl>& decl) {
          auto& feature = features.Add(decl, className, level);
          if (feature.fLevel != level) return true;
          feature.fIsKey = feature.fIsKey || NModel::IsQualified(*decl, "Key");
          feature.fStatic = nullptr;
          return true;
        },
        {});
    line[level]->EnumerateStaticProperties(
        [&](const boost::shared_ptr<ICIMProperty>& property) {
          auto* const feature = features.Find(property->GetDecl()->GetName());
          if (feature == nullptr) return true;
          // A value of a class's own is a declaration: nothing above has it.
          TProperties::Redeclare(*feature, className, level);
          feature->fStatic = std::make_shared<const TCIMValue>(property->GetValue());
          return true;
        },
        {});
  }
  std::vector<TPropertySchema> properties;
  for (const auto& feature : features.Take()) {
    const TCIMValue& declared = feature.fDecl->GetDefaultValue();
    const auto referenced = declared.GetReferencedClass();
    properties.push_back({feature.fDecl->GetName(), feature.fStatic ? *feature.fStatic : declared,
                          referenced ? referenced->GetName({}) : "", feature.fIsKey,
                          feature.fStatic != nullptr, NDescribe::StringKindOf(*feature.fDecl),
                          feature.fOrigin, QualifiersOf(*feature.fDecl)});
  }
  return properties;
}

std::vector<TParameterSchema> ParametersOf(const ICIMMethodDecl& method) {
  std::vector<TParameterSchema> parameters;
  method.EnumerateParameterDecls([&parameters](const boost::shared_ptr<ICIMParameterDecl>& each) {
    parameters.push_back({each->GetName(), each->GetType(), GetReferencedClassName(*each),
                          NDescribe::StringKindOf(*each), QualifiersOf(*each)});
    return true;
  });
  return parameters;
}

std::vector<TMethodSchema> ReadMethods(const std::vector<TClass>& line) {
  TFeatures<ICIMMethodDecl> features;
  for (std::size_t level = 0; level < line.size(); ++level) {
    line[level]->EnumerateMethodDecls(
        [&](const boost::shared_ptr<ICIMMethodDecl>& decl) {
          features.Add(decl, line[level]->GetName({}), level);
          return true;
        },
        {});
  }
  std::vector<TMethodSchema> methods;
  for (const auto& [decl, origin, level, isKey, value] : features.Take()) {
    methods.push_back({decl->GetName(), decl->GetReturnType(), NDescribe::StringKindOf(*decl),
                       origin, QualifiersOf(*decl), ParametersOf(*decl)});
  }
  return methods;
}

/// Returns the classes in the reverse order of their names.
std::vector<TClass> ReverselySorted(std::vector<TClass> classes) {
  std::sort(classes.begin(), classes.end(), [](const TClass& left, const TClass& right) {
    return left->GetName({}) > right->GetName({});
  });
  return classes;
}

std::size_t CountInstances(const ICIMClass& cimClass) {
  std::size_t count = 0;
  NModel::ForEachInstance(cimClass, [&count](const ICIMInstance&) { ++count; });
  return count;
}

}  // namespace

TClassSchema ReadSchema(const TClass& cimClass) {
  const std::vector<TClass> line = LineOf(cimClass);
  const auto isIndication = [](const TClass& each) {
    return IsTrue(QualifiersOf(*each), "Indication");
  };
  return {cimClass->GetName({}),
          line.size() > 1 ? line[line.size() - 2]->GetName({}) : "",
          cimClass->IsAssociation({}),
          std::any_of(line.begin(), line.end(), isIndication),
          QualifiersOf(*cimClass),
          ReadProperties(line),
          ReadMethods(line)};
}

std::vector<TQualifierSchema> ReadQualifiers(const ICIMNamespace& ns) {
  std::vector<boost::shared_ptr<ICIMQualifierDecl>> decls;
  ns.EnumerateQualifierDecls(TAddToVectorCallback(decls), {});
  std::sort(decls.begin(), decls.end(),
            [](const auto& left, const auto& right) { return left->GetName() < right->GetName(); });
  std::vector<TQualifierSchema> qualifiers;
  qualifiers.reserve(decls.size());
  for (const auto& each : decls) {
    if (NDescribe::IsStringKindQualifier(each->GetName())) continue;
    qualifiers.push_back(
        {each->GetName(), each->GetDefaultValue(), each->GetScope(), each->GetFlavor()});
  }
  return qualifiers;
}

std::vector<TClassNode> ReadClassTree(const ICIMNamespace& ns, const TClass& root) {
  std::vector<TClass> tops;
  if (root) {
    tops.push_back(root);
  } else {
    ns.EnumerateClasses(TAddToVectorCallback(tops), {});
  }
  std::vector<std::pair<TClass, std::size_t>> rest;  // with the depth; the next one is the last
  for (const TClass& top : ReverselySorted(tops)) rest.emplace_back(top, 0);
  std::vector<TClassNode> nodes;
  while (!rest.empty()) {
    const auto [cimClass, depth] = rest.back();
    rest.pop_back();
    const TClass superclass = NModel::SuperclassOf(*cimClass);
    nodes.push_back({cimClass->GetName({}), superclass ? superclass->GetName({}) : "", depth,
                     CountInstances(*cimClass)});
    std::vector<TClass> subclasses;
    cimClass->EnumerateSubclasses(TAddToVectorCallback(subclasses), false, {});
    for (const TClass& each : ReverselySorted(subclasses)) rest.emplace_back(each, depth + 1);
  }
  return nodes;
}

}  // namespace NVORNQDX20
