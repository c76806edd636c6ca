#pragma once

#include "belvakit/Request/requestlist/request_list_cell_data.hpp"

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <utility>
#include <vector>

namespace belvakit {

// The rows of the list as a value whose copies share them: the actions that carry thousands of
// rows from stage to stage and the state that shows them hold the same ones. Rows once shared
// never change; a change to the list makes new rows.
class RequestListRows {
public:
    using Rows = std::vector<RequestListCellData>;
    using value_type = RequestListCellData;
    using iterator = Rows::const_iterator;
    using const_iterator = Rows::const_iterator;

    RequestListRows() = default;
    RequestListRows(Rows rows) : rows_(rows.empty() ? nullptr : std::make_shared<Rows>(std::move(rows))) {}
    RequestListRows(std::initializer_list<RequestListCellData> rows) : RequestListRows(Rows(rows)) {}

    const Rows& get() const { return rows_ ? *rows_ : none(); }
    operator const Rows&() const { return get(); }

    const_iterator begin() const { return get().begin(); }
    const_iterator end() const { return get().end(); }
    std::size_t size() const { return get().size(); }
    bool empty() const { return get().empty(); }
    const RequestListCellData& operator[](std::size_t index) const { return get()[index]; }
    const RequestListCellData& front() const { return get().front(); }

    // The rows to change: moved out when no other copy shares them, else copied.
    Rows take() && {
        if (!rows_) return {};
        Rows taken = rows_.use_count() == 1 ? std::move(*rows_) : *rows_;
        rows_.reset();
        return taken;
    }

    // Whether both hold the very same rows, not only equal ones.
    bool shares(const RequestListRows& other) const { return rows_ == other.rows_; }
    bool operator==(const RequestListRows& other) const { return shares(other) || get() == other.get(); }

private:
    static const Rows& none() {
        static const Rows empty;
        return empty;
    }

    // Null when there are no rows.
    std::shared_ptr<Rows> rows_;
};

} // namespace belvakit
