#pragma once

#include <memory>

#include "platform/clsLocale.h"

struct IDispatch;

namespace corvane {

/// The selection box of countries that is a control of the host's, reached by the names of its members: `Clear`,
/// `AddItem(Item)`, `NewIndex`, `ItemData(Index)` and `ListIndex`. The control must not sort its rows. What it fails
/// with is thrown as automation error. The box keeps a reference to it.
std::unique_ptr<CountryComboBox> countryComboBox(IDispatch& control);

}  // namespace corvane
