// Points in time across the border: whole seconds of wall-clock time in the machine's time zone.
#pragma once

#include "native/objc.h"
#include "plugin/handles.h"

namespace zel {

/// An autoreleased NSCalendarDate of a host Date, which is only borrowed. Nil for null and when one
/// of the date's fields can't be read. Native exceptions pass.
id NewNSDate(REALdate date);

/// A new host Date of a native date, with one reference for the caller; fractions of a second are
/// dropped. Null when the host makes none. Native exceptions pass.
/// @param date an NSDate, not nil.
[[nodiscard]] REALobject NSDateRB(id date);

}  // namespace zel
