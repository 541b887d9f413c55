#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/table_view.h"

namespace corvane {

/// A cell as people are shown it: with escapes for its control characters ("\r\n"), so that a row stays one line.
std::u16string cellText(std::u16string_view cell);

/// A table view that is plain text: the diagnostic views where there is no list control.
class TextTable final : public TableView {
public:
    void prepare() override;
    void addColumn(std::u16string_view header) override;
    void addRow(std::u16string_view text) override;
    void setSubItem(int column, std::u16string_view text) override;
    /// Nothing to do: `aligned` measures the columns.
    void fitColumns() override {}

    const std::vector<std::u16string>& columns() const { return columns_; }
    /// The rows; each has a cell for each column.
    const std::vector<std::vector<std::u16string>>& rows() const { return rows_; }

    /// Header, rule and rows in columns as wide as their widest cell, two blanks apart; lines end with a line feed and
    /// no line with blanks. Columns whose cells are all blank are left out. Each cell is on one line.
    std::u16string aligned() const;

private:
    std::vector<std::u16string> columns_;
    std::vector<std::vector<std::u16string>> rows_;
};

}  // namespace corvane
