#pragma once

#include "host/clsScriptControl.h"
#include "host/com/automation.h"

/// Values of scripts as automation hands them around.
namespace corvane {

/// Sets an empty variant to a value of the same type. Throws error 7.
void setVariant(VARIANT& variant, const Value& value);

/// Whether a host has declared the array with its bounds, so that it cannot be replaced by another.
bool isFixedSize(const SAFEARRAY& array);

/// Replaces `array` by a two-dimensional array of strings with the table's content, both dimensions counted from 0. The
/// old one is released. Throws error 7, and error 10 when the array is locked or of a fixed size; `array` is unchanged
/// then.
void replaceStringArray(SAFEARRAY*& array, const StringTable& table);

}  // namespace corvane
