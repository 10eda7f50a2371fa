#include "io/field/FieldReports.hpp"

#include "facts/Listener.hpp"

namespace Io::Field {

void FieldReports::damage(std::uint64_t number, std::string_view line, Facts::RecordFault fault,
                          std::uint64_t found, std::uint64_t expected) {
    if (damaged_ == mostListed) firstUnlisted_ = fault;
    if (++damaged_ > mostListed) return;
    Facts::report(Facts::LineDamaged{file_, format_, number, line, fault, found, expected});
}

void FieldReports::finish() const {
    if (damaged_ > mostListed)
        Facts::report(Facts::LinesDamaged{file_, firstUnlisted_, damaged_ - mostListed});
    for (std::size_t i = 0; i < tallies_.size(); ++i)
        if (tallies_[i].count != 0)
            Facts::report(Facts::LinesTolerated{file_, static_cast<Facts::Tolerance>(i),
                                                tallies_[i].count, tallies_[i].firstLine});
}

}  // namespace Io::Field
