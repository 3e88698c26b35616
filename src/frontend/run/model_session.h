// A workbook in the embedded host, as the driver sees it.
#pragma once

#include <string>
#include <vector>

#include "frontend/run/driver.h"
#include "frontend/run/setting_tables.h"
#include "workbook/recalculation/book.h"

namespace quorva::frontend {

class ModelSession {
public:
    /// Reads the workbook and makes it the module's host. Throws workbook::Failure, or CommandFailure (Model) without
    /// any model function.
    explicit ModelSession(const std::string& file);

    Host host();
    workbook::Book& book() { return book_; }

    /// The cells of a range or defined name; nothing when the workbook knows neither.
    std::optional<CellTable> table(std::string_view reference) const;

    /// A sentence for each cell whose model function takes no part in the run, because one of its arguments is not what
    /// the function takes.
    std::vector<std::string> absentFunctions(const std::vector<Field>& fields) const;

private:
    void watch(std::span<const Field> fields);

    workbook::Book book_;
    std::vector<workbook::CellAddress> watched_;
};

}  // namespace quorva::frontend
