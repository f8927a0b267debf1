#include "base/Failure.h"

namespace quorvane {

void Raise(FailureNumber number, const std::string& description) {
  throw Failure(number, description);
}

void RaiseOverflow() { Raise(FailureNumber::Overflow, "Overflow"); }

void RaiseInvalidProcedureCall() {
  Raise(FailureNumber::InvalidProcedureCall, "Invalid procedure call or argument");
}

void RaiseObjectVariableNotSet() {
  Raise(FailureNumber::ObjectVariableNotSet, "Object variable or With block variable not set");
}

void RaiseSubscriptOutOfRange() { Raise(FailureNumber::SubscriptOutOfRange, "Subscript out of range"); }

}  // namespace quorvane
