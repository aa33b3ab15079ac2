// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/interfaces.h>
#include <qdxcore/status.h>

namespace NVORNQDX20 {
namespace {

[[noreturn]] void NotImplemented() { throw TQDXException(kQDXStatusNotImplemented); }

}  // namespace

// The destructors are defined here, out of line, so that each interface has one virtual table and
// one type information in the process.
ICIMElement::~ICIMElement() = default;
ICIMNamedElement::~ICIMNamedElement() = default;
ICIMQualifierDecl::~ICIMQualifierDecl() = default;
ICIMQualifier::~ICIMQualifier() = default;
ICIMPropertyDecl::~ICIMPropertyDecl() = default;
ICIMProperty::~ICIMProperty() = default;
ICIMParameterDecl::~ICIMParameterDecl() = default;
ICIMMethodDecl::~ICIMMethodDecl() = default;
ICIMInstance::~ICIMInstance() = default;
ICIMClass::~ICIMClass() = default;
ICIMNamespace::~ICIMNamespace() = default;
INamespaceProvider::~INamespaceProvider() = default;
INamespaceConsumer::~INamespaceConsumer() = default;

void ICIMNamedElement::ReservedElement1() { NotImplemented(); }

void ICIMQualifierDecl::Reserved1() { NotImplemented(); }
void ICIMQualifierDecl::Reserved2() { NotImplemented(); }
void ICIMQualifierDecl::Reserved3() { NotImplemented(); }
void ICIMQualifierDecl::Reserved4() { NotImplemented(); }
void ICIMQualifierDecl::Reserved5() { NotImplemented(); }
void ICIMQualifierDecl::Reserved6() { NotImplemented(); }
void ICIMQualifierDecl::Reserved7() { NotImplemented(); }
void ICIMQualifierDecl::Reserved8() { NotImplemented(); }

void ICIMQualifier::Reserved1() { NotImplemented(); }
void ICIMQualifier::Reserved2() { NotImplemented(); }
void ICIMQualifier::Reserved3() { NotImplemented(); }
void ICIMQualifier::Reserved4() { NotImplemented(); }
void ICIMQualifier::Reserved5() { NotImplemented(); }
void ICIMQualifier::Reserved6() { NotImplemented(); }

void ICIMPropertyDecl::Reserved1() { NotImplemented(); }
void ICIMPropertyDecl::Reserved2() { NotImplemented(); }
void ICIMPropertyDecl::Reserved3() { NotImplemented(); }
void ICIMPropertyDecl::Reserved4() { NotImplemented(); }
void ICIMPropertyDecl::Reserved5() { NotImplemented(); }
void ICIMPropertyDecl::Reserved6() { NotImplemented(); }

void ICIMProperty::Reserved1() { NotImplemented(); }
void ICIMProperty::Reserved2() { NotImplemented(); }
void ICIMProperty::Reserved3() { NotImplemented(); }
void ICIMProperty::Reserved4() { NotImplemented(); }
void ICIMProperty::Reserved5() { NotImplemented(); }
void ICIMProperty::Reserved6() { NotImplemented(); }
void ICIMProperty::Reserved7() { NotImplemented(); }
void ICIMProperty::Reserved8() { NotImplemented(); }
void ICIMProperty::Reserved9() { NotImplemented(); }
void ICIMProperty::Reserved10() { NotImplemented(); }
void ICIMProperty::Reserved11() { NotImplemented(); }

void ICIMParameterDecl::Reserved1() { NotImplemented(); }
void ICIMParameterDecl::Reserved2() { NotImplemented(); }
void ICIMParameterDecl::Reserved3() { NotImplemented(); }
void ICIMParameterDecl::Reserved4() { NotImplemented(); }
void ICIMParameterDecl::Reserved5() { NotImplemented(); }
void ICIMParameterDecl::Reserved6() { NotImplemented(); }
void ICIMParameterDecl::Reserved7() { NotImplemented(); }

void ICIMMethodDecl::Reserved1() { NotImplemented(); }
void ICIMMethodDecl::Reserved2() { NotImplemented(); }
void ICIMMethodDecl::Reserved3() { NotImplemented(); }
void ICIMMethodDecl::Reserved4() { NotImplemented(); }
void ICIMMethodDecl::Reserved5() { NotImplemented(); }
void ICIMMethodDecl::Reserved6() { NotImplemented(); }
void ICIMMethodDecl::Reserved7() { NotImplemented(); }
void ICIMMethodDecl::Reserved8() { NotImplemented(); }

void ICIMInstance::Reserved1() { NotImplemented(); }
void ICIMInstance::Reserved2() { NotImplemented(); }
void ICIMInstance::Reserved3() { NotImplemented(); }
void ICIMInstance::Reserved4() { NotImplemented(); }
void ICIMInstance::Reserved5() { NotImplemented(); }
void ICIMInstance::Reserved6() { NotImplemented(); }
void ICIMInstance::Reserved7() { NotImplemented(); }

void ICIMClass::Reserved1() { NotImplemented(); }
void ICIMClass::Reserved2() { NotImplemented(); }
void ICIMClass::Reserved3() { NotImplemented(); }
void ICIMClass::Reserved4() { NotImplemented(); }
void ICIMClass::Reserved5() { NotImplemented(); }
void ICIMClass::Reserved6() { NotImplemented(); }
void ICIMClass::Reserved7() { NotImplemented(); }
void ICIMClass::Reserved8() { NotImplemented(); }
void ICIMClass::Reserved9() { NotImplemented(); }
void ICIMClass::Reserved10() { NotImplemented(); }
void ICIMClass::Reserved11() { NotImplemented(); }
void ICIMClass::Reserved12() { NotImplemented(); }
void ICIMClass::Reserved13() { NotImplemented(); }
void ICIMClass::Reserved14() { NotImplemented(); }
void ICIMClass::Reserved15() { NotImplemented(); }
void ICIMClass::Reserved16() { NotImplemented(); }
void ICIMClass::Reserved17() { NotImplemented(); }

void ICIMNamespace::Reserved1() { NotImplemented(); }
void ICIMNamespace::Reserved2() { NotImplemented(); }
void ICIMNamespace::Reserved3() { NotImplemented(); }
void ICIMNamespace::Reserved4() { NotImplemented(); }
void ICIMNamespace::Reserved5() { NotImplemented(); }
void ICIMNamespace::Reserved6() { NotImplemented(); }

const std::string& ICIMNamespace::GetName(TOptionsMap) const { NotImplemented(); }

boost::shared_ptr<ICIMNamespace> INamespaceProvider::GetNamespace(const std::string&, TOptionsMap) {
  NotImplemented();
}

void INamespaceProvider::EnumerateNamespaceNames(const TNamespaceNameCallback&, TOptionsMap) {
  NotImplemented();
}

const std::string& INamespaceConsumer::GetName(TOptionsMap) const { NotImplemented(); }

void INamespaceConsumer::Consume(boost::shared_ptr<ICIMNamespace>, TOptionsMap) {
  NotImplemented();
}

}  // namespace NVORNQDX20
