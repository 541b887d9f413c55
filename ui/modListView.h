#pragma once

#include <memory>

#include "engine/clsCommandList.h"
#include "engine/table_view.h"

struct IDispatch;

/// The diagnostic views in list controls of the host's.
namespace corvane {

/// A table view that is a host's list control: one that shows a report with column headers and items, reached by the
/// names of its members.
///
/// `View`, `LabelEdit`, `FullRowSelect`, `GridLines`, `HideSelection`, `Sorted`, `ColumnHeaders` and `ListItems` with
/// their `Clear` and `Add(Index, Key, Text)`, and an item's `SubItems(n)` are used to fill it: what they fail with is
/// thrown as automation error. `View`, `Visible`, `hWnd` and the `Count` of the column headers are used to fit the
/// columns, where failures count for nothing.
///
/// The view keeps a reference to the control.
std::unique_ptr<TableView> listViewTable(IDispatch& control);

/// Fills two list controls of the host's with the statements and the identifiers of a script; a control that is null is
/// skipped.
void DisplayDataInListViews(clsCommandList& commandList, IDispatch* c_CmdListView, IDispatch* c_DataListView = nullptr);

}  // namespace corvane
