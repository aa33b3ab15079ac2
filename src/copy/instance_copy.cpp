// SPDX-License-Identifier: Apache-2.0
// Copies instances and their values to another namespace.
#include <qdxcore/copy.h>
#include <qdxcore/instance_copying.h>

#include "target.h"

using namespace NVORNQDX20;

namespace {

TCIMReference CopyReference(const TCIMReference& source,
                            const boost::shared_ptr<ICIMNamespace>& target) {
  TCIMReference copy(target, {});
  copy.SetClassName(source.GetClassName());
  source.EnumerateKeyBindings(TCopyReferenceKeys{target, &copy});
  return copy;
}

}  // namespace

boost::shared_ptr<ICIMInstance> TCIMCopy::CopyInstance(boost::shared_ptr<ICIMInstance> instance,
                                                       boost::shared_ptr<ICIMNamespace> target) {
  if (auto* const itself = dynamic_cast<ICopiesInstances*>(target.get())) {
    boost::shared_ptr<ICIMInstance> made = itself->CopyInstance(*instance);
    if (made) return made;
  }
  boost::shared_ptr<ICIMInstance> copy =
      NCopy::TargetClass(instance->GetClass({}), target)->CreateInstance({});
  instance->EnumerateProperties(TCopyInstanceProperty{target, copy}, {});
  copy->Commit({});
  return copy;
}

TCIMValue TCIMCopy::CopyValue(const TCIMValue& value, boost::shared_ptr<ICIMNamespace> target) {
  if (!value.IsReference()) return value;
  TCIMValue copy(TCIMValue::TCIMType::kCIMTypeReference, 0);
  copy.SetReferencedClass(NCopy::TargetClass(value.GetReferencedClass(), target));
  if (value.IsNull()) return copy;
  TCIMReference reference = CopyReference(value, target);
  copy.Set(reference);
  return copy;
}

bool TCopyInstanceProperty::operator()(boost::shared_ptr<ICIMProperty> property) const {
  const TCIMValue value = TCIMCopy::CopyValue(property->GetValue(), fTarget);
  fTargetInstance->SetPropertyValue(property->GetDecl()->GetName(), value, {});
  return true;
}

bool TCopyReferenceKeys::operator()(std::pair<std::string, TCIMValue> binding) const {
  fReference->AddKeyValue(binding.first, TCIMCopy::CopyValue(binding.second, fTarget));
  return true;
}
