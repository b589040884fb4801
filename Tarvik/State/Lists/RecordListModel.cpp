#include "State/Lists/RecordListModel.h"

namespace tarvik {

RecordListModelBase::RecordListModelBase(std::vector<QByteArray> roleNames, QObject* parent)
    : QAbstractListModel(parent), m_roleNames(std::move(roleNames)) {}

QHash<int, QByteArray> RecordListModelBase::roleNames() const {
    QHash<int, QByteArray> names;
    for (std::size_t position = 0; position < m_roleNames.size(); ++position)
        names.insert(roleNumber(position), m_roleNames[position]);
    return names;
}

std::vector<std::size_t> RecordListModelBase::longestGrowingRun(const std::vector<std::size_t>& values) {
    constexpr std::size_t none = static_cast<std::size_t>(-1);
    // For each length, the position of the smallest value that ends a run of that length.
    std::vector<std::size_t> ends;
    std::vector<std::size_t> before(values.size(), none);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto place = std::lower_bound(ends.begin(), ends.end(), values[i],
                                            [&](std::size_t end, std::size_t value) { return values[end] < value; });
        if (place != ends.begin()) before[i] = *std::prev(place);
        if (place == ends.end()) {
            ends.push_back(i);
        } else {
            *place = i;
        }
    }
    std::vector<std::size_t> run;
    for (std::size_t i = ends.empty() ? none : ends.back(); i != none; i = before[i]) run.push_back(i);
    std::reverse(run.begin(), run.end());
    return run;
}

}  // namespace tarvik
