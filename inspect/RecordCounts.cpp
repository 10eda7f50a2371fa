#include "inspect/RecordCounts.hpp"

#include "io/formats/InputFormats.hpp"

namespace Inspect {

std::uint64_t RecordCounts::total() const {
    std::uint64_t sum = 0;
    for (const Kind& kind : kinds) sum += kind.count;
    return sum;
}

void RecordCounter::visit(const Io::Import::RecordLines& records) {
    counts_[records.kind] += records.count;
    if (records.isData && records.size < lengths_.size()) lengths_[records.size] += records.count;
}

RecordCounts RecordCounter::result(Facts::InputFormat format) const {
    RecordCounts records;
    const auto names = Io::Formats::rowOf(format).recordKinds;
    for (std::size_t kind = 0; kind < names.size(); ++kind)
        if (counts_[kind] != 0) records.kinds.push_back({std::string(names[kind]), counts_[kind]});
    for (std::size_t length = 0; !names.empty() && length < lengths_.size(); ++length)
        if (lengths_[length] != 0) records.dataLengths.emplace(length, lengths_[length]);
    return records;
}

}  // namespace Inspect
