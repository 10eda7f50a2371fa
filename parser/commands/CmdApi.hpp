#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "parser/commands/CmdContext.hpp"
#include "parser/commands/LateNumber.hpp"

namespace Parser::WrapperLib {

enum class CmdType : std::uint32_t {
    NewBuffer = 0,
    FillBuffer = 1,
    PrintBuffer = 2,
    NewCrc = 3,
    PrintCrc = 4,
    NewHash = 5,
    PrintHash = 6,
    WriteFile = 7,
    PrintText = 8,
    CallApp = 9,
    VerifyBuffer = 10,
    NewSignature = 11,
    PrintSignature = 12,
    VerifySignature = 13
};

/// One statement of a script. The parser fills its fields while it reads the statement; the runner
/// executes it once, after the whole script has parsed. Fields that take numbers which are not
/// known before the statement runs are filled by `settle`, so that `execute` knows numbers alone.
class CmdApi {
public:
    CmdApi() = default;
    virtual ~CmdApi() = default;
    CmdApi(const CmdApi&) = delete;
    CmdApi& operator=(const CmdApi&) = delete;

    /// The statement has a number that is not known yet.
    void addLate(std::shared_ptr<LateNumber> number) {
        if (late_ == nullptr) late_ = std::make_unique<Late>();
        late_->numbers.push_back(std::move(number));
    }

    /// Does `setting`, which fills a field, when the numbers of the statement are known. So fields
    /// are filled in the order of the text, whatever number is known first.
    template <class Setting>
    void whenKnown(Setting setting) {
        if (late_ == nullptr)
            setting();
        else
            late_->settings.emplace_back(std::move(setting));
    }

    /// Asks for the numbers that are not known yet and fills the fields that take them, before
    /// `execute`. False after a report: the statement cannot be executed.
    bool settle(CmdContext& context);

    /// `settle` and `execute`.
    bool run(CmdContext& context) { return settle(context) && execute(context); }

    /// Does the work of the statement. False when it failed; it has printed why and changed
    /// nothing in `context`. No exception derived from std::exception leaves.
    virtual bool execute(CmdContext& context) = 0;

    /// The CmdType of the statement as a number.
    virtual std::uint32_t getCmdType() const = 0;

protected:
    static constexpr std::uint32_t number(CmdType type) { return static_cast<std::uint32_t>(type); }

private:
    /// The numbers, which others look at as well, and what waits for them. Few statements have it.
    struct Late {
        std::vector<std::shared_ptr<LateNumber>> numbers;
        std::vector<std::function<void()>> settings;
    };

    std::unique_ptr<Late> late_;
};

}  // namespace Parser::WrapperLib
