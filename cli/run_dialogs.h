#pragma once

#include <cstddef>
#include <string_view>

#include "cli/answers_file.h"
#include "cli/event_log.h"
#include "cli/outcome.h"
#include "engine/operator_dialogs.h"
#include "platform/number_locale.h"

namespace corvane {

/// The operator of an answers file. What he types goes through the rules of the input box, as if typed there. When his
/// answers have run out nobody is there any more. Message boxes with one button are acknowledged without an answer.
class AnsweredDialogs final : public OperatorDialogs {
public:
    /// `answers` must outlive the dialogs.
    AnsweredDialogs(const DialogAnswers& answers, NumberLocale locale)
        : answers_(answers), locale_(std::move(locale)) {}
    std::optional<std::int32_t> showMessage(const OperatorMessage& message) override;
    InputAnswer askInput(const InputRequest& request) override;

private:
    const DialogAnswers& answers_;
    NumberLocale locale_;
    std::size_t nextMessage_ = 0;
    std::size_t nextInput_ = 0;
};

/// Hands each dialog on and tells the watch how it ended, and the log too unless the operator sees it anyway.
class WatchedDialogs final : public OperatorDialogs {
public:
    WatchedDialogs(OperatorDialogs& dialogs, EventLog& log, bool logs) : dialogs_(dialogs), log_(log), logs_(logs) {}
    /// Who is told; null for nobody.
    void setWatch(RunWatch* watch) { watch_ = watch; }

    std::optional<std::int32_t> showMessage(const OperatorMessage& message) override;
    InputAnswer askInput(const InputRequest& request) override;

private:
    OperatorDialogs& dialogs_;
    EventLog& log_;
    bool logs_;
    RunWatch* watch_ = nullptr;
};

}  // namespace corvane
