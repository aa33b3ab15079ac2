// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/datetime.h>
#include <qdxcore/status.h>

#include "datetime_text.h"
#include "local_time.h"
#include "zone_facts.h"

#include <boost/make_shared.hpp>

namespace NVORNQDX20 {

namespace {

/// Texts and fields are checked before the body is allocated, and in the function that the caller
/// calls: a throw takes longer with each function that it leaves, above all if it frees something.
__attribute__((always_inline)) inline TCIMDateTimeImpl BodyOf(const std::string& text) {
  TCIMDateTimeImpl body;
  if (!ReadDateTime(text, body)) throw TQDXException(kQDXStatusInvalidDateTime);
  return body;
}

/// What IsValid returns for a point.
__attribute__((always_inline)) inline bool IsConvertible(std::uint16_t year, std::uint16_t month,
                                                         std::uint32_t day, std::uint16_t hour,
                                                         int minute, std::uint16_t second) {
  // Single fields are not checked on purpose: other systems send values that carry over.
  // Pinned by CIMDateTimeText.KeepsFieldsThatCarryOver.
  TZoneFacts& zone = TZoneFacts::OfThisThread();
  return TWallClock(year, month, day, hour, minute, second).IsConvertible(zone);
}

}  // namespace

TCIMDateTime::TCIMDateTime() : fBody(boost::make_shared<TCIMDateTimeImpl>()) {}

TCIMDateTime::TCIMDateTime(std::uint16_t year, std::uint16_t month, std::uint32_t day,
                           std::uint16_t hour, std::uint16_t minute, std::uint16_t second,
                           std::uint32_t microseconds, std::int16_t utcOffset)
    : fBody(boost::make_shared<TCIMDateTimeImpl>(
          TCIMDateTimeImpl(year, month, day, hour, minute, second, microseconds, utcOffset))) {}

TCIMDateTime::TCIMDateTime(std::uint32_t days, std::uint16_t hours, std::uint16_t minutes,
                           std::uint16_t seconds, std::uint32_t microseconds)
    : fBody(boost::make_shared<TCIMDateTimeImpl>(
          TCIMDateTimeImpl(days, hours, minutes, seconds, microseconds))) {}

TCIMDateTime::TCIMDateTime(const std::string& text)
    : fBody(boost::make_shared<TCIMDateTimeImpl>(BodyOf(text))) {}

TCIMDateTime::TCIMDateTime(const TCIMDateTime& other)
    : fBody(boost::make_shared<TCIMDateTimeImpl>(*other.fBody)) {}

TCIMDateTime& TCIMDateTime::operator=(const TCIMDateTime& other) {
  // A new body, so that callers that hold the old one through GetBody() see no change.
  fBody = boost::make_shared<TCIMDateTimeImpl>(*other.fBody);
  return *this;
}

TCIMDateTime::~TCIMDateTime() = default;

void TCIMDateTime::Set(std::uint16_t year, std::uint16_t month, std::uint32_t day,
                       std::uint16_t hour, std::uint16_t minute, std::uint16_t second,
                       std::uint32_t microseconds, std::int16_t utcOffset) {
  fBody->Set(year, month, day, hour, minute, second, microseconds, utcOffset);
}

void TCIMDateTime::Set(std::uint32_t days, std::uint16_t hours, std::uint16_t minutes,
                       std::uint16_t seconds, std::uint32_t microseconds) {
  fBody->Set(days, hours, minutes, seconds, microseconds);
}

void TCIMDateTime::Set(const std::string& text) { fBody->Set(text); }

std::string TCIMDateTime::ToString() const { return fBody->ToString(); }
std::string TCIMDateTime::ToUIString() const { return fBody->ToUIString(); }

bool TCIMDateTime::IsNull() const { return fBody->IsNull(); }
bool TCIMDateTime::IsInterval() const { return fBody->IsInterval(); }
std::uint16_t TCIMDateTime::GetYear() const { return fBody->GetYear(); }
std::uint16_t TCIMDateTime::GetMonth() const { return fBody->GetMonth(); }
std::uint32_t TCIMDateTime::GetDay() const { return fBody->GetDay(); }
std::uint16_t TCIMDateTime::GetHour() const { return fBody->GetHour(); }
std::uint16_t TCIMDateTime::GetMinute() const { return fBody->GetMinute(); }
std::uint16_t TCIMDateTime::GetSecond() const { return fBody->GetSecond(); }
std::uint32_t TCIMDateTime::GetMicroSeconds() const { return fBody->GetMicroSeconds(); }
std::int16_t TCIMDateTime::GetUTCOffset() const { return fBody->GetUTCOffset(); }
void TCIMDateTime::Clear() { fBody->Clear(); }
bool TCIMDateTime::GetPrecision() const { return fBody->GetPrecision(); }
void TCIMDateTime::SetPrecision(bool precision) { fBody->SetPrecision(precision); }

void TCIMDateTime::GetDifference(TCIMDateTime& first, TCIMDateTime& second) const {
  fBody->GetDifference(first, second);
}

boost::shared_ptr<TCIMDateTimeImpl> TCIMDateTime::GetBody() const { return fBody; }

TCIMDateTimeImpl::TCIMDateTimeImpl() = default;

TCIMDateTimeImpl::TCIMDateTimeImpl(std::uint16_t year, std::uint16_t month, std::uint32_t day,
                                   std::uint16_t hour, std::uint16_t minute, std::uint16_t second,
                                   std::uint32_t microseconds, std::int16_t utcOffset) {
  Set(year, month, day, hour, minute, second, microseconds, utcOffset);
}

TCIMDateTimeImpl::TCIMDateTimeImpl(std::uint32_t days, std::uint16_t hours, std::uint16_t minutes,
                                   std::uint16_t seconds, std::uint32_t microseconds) {
  Set(days, hours, minutes, seconds, microseconds);
}

TCIMDateTimeImpl::TCIMDateTimeImpl(const std::string& text) { Set(text); }

void TCIMDateTimeImpl::Set(const std::string& text) {
  if (!ReadDateTime(text, *this)) throw TQDXException(kQDXStatusInvalidDateTime);
}

TCIMDateTimeImpl::TCIMDateTimeImpl(const TCIMDateTimeImpl& other) { *this = other; }

TCIMDateTimeImpl& TCIMDateTimeImpl::operator=(const TCIMDateTimeImpl& other) {
  fNull = other.fNull;
  fYear = other.fYear;
  fMonth = other.fMonth;
  fDay = other.fDay;
  fHour = other.fHour;
  fMinute = other.fMinute;
  fSecond = other.fSecond;
  fMicroseconds = other.fMicroseconds;
  fUTCOffset = other.fUTCOffset;
  fInterval = other.fInterval;
  // The flag belongs to one object; copies lose it on purpose.
  // Pinned by CIMDateTime.CopiesAllButThePrecisionFlag.
  fPrecision = false;
  return *this;
}

void TCIMDateTimeImpl::Set(std::uint16_t year, std::uint16_t month, std::uint32_t day,
                           std::uint16_t hour, std::uint16_t minute, std::uint16_t second,
                           std::uint32_t microseconds, std::int16_t utcOffset) {
  if (!IsConvertible(year, month, day, hour, minute - utcOffset, second)) {
    throw TQDXException(kQDXStatusInvalidDateTime);
  }
  fNull = false;
  fYear = year;
  fMonth = month;
  fDay = day;
  fHour = hour;
  fMinute = minute;
  fSecond = second;
  fMicroseconds = microseconds;
  fUTCOffset = utcOffset;
  fInterval = false;
}

void TCIMDateTimeImpl::Set(std::uint32_t days, std::uint16_t hours, std::uint16_t minutes,
                           std::uint16_t seconds, std::uint32_t microseconds) {
  if (!IsValid(days, hours, minutes, seconds, microseconds)) {
    throw TQDXException(kQDXStatusInvalidDateTime);
  }
  fNull = false;
  fDay = days;
  fHour = hours;
  fMinute = minutes;
  fSecond = seconds;
  fMicroseconds = microseconds;
  fInterval = true;
}

bool TCIMDateTimeImpl::IsValid(std::uint16_t year, std::uint16_t month, std::uint32_t day,
                               std::uint16_t hour, std::uint16_t minute, std::uint16_t second,
                               std::uint32_t /*microseconds*/, std::int16_t utcOffset) {
  return IsConvertible(year, month, day, hour, minute - utcOffset, second);
}

bool TCIMDateTimeImpl::IsValid(std::uint32_t /*days*/, std::uint16_t hours, std::uint16_t minutes,
                               std::uint16_t seconds, std::uint32_t microseconds) {
  return hours <= 23 && minutes <= 59 && seconds <= 59 && microseconds <= 999999;
}

}  // namespace NVORNQDX20
