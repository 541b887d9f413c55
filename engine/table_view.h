#pragma once

#include <string_view>

namespace corvane {

/// A table that the diagnostic views are written into: a host's list control, or text.
///
/// Columns count from 0; column 0 is the row's own text, the others are its sub-items.
class TableView {
public:
    virtual ~TableView() = default;
    /// Makes it an empty read-only table: rows and columns of an earlier fill are dropped.
    virtual void prepare() = 0;
    virtual void addColumn(std::u16string_view header) = 0;
    /// Appends a row; `setSubItem` then writes into this row.
    virtual void addRow(std::u16string_view text) = 0;
    /// `column` is 1 or more.
    virtual void setSubItem(int column, std::u16string_view text) = 0;
    /// Called when the table is filled: the columns take the width of their contents. An implementation keeps a failure
    /// to do so to itself: the table is filled all the same.
    virtual void fitColumns() = 0;
};

}  // namespace corvane
