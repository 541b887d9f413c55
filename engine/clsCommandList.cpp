#include "engine/clsCommandList.h"

#include "engine/modCommand.h"
#include "engine/text_utilities.h"
#include "platform/automation_error.h"
#include "platform/value_rules.h"

namespace corvane {

clsCommandList::clsCommandList(EngineOwner& owner, const EngineServices& services, EngineOptions options)
    : owner_(owner),
      services_(services),
      options_(options),
      script_(std::make_unique<LoadedScript>(*this, listener_)),
      dataSet_(makeReference<clsDataSetParameters>()) {}

clsCommandList::~clsCommandList() = default;

const NumberLocale& clsCommandList::presentUserLocale() const { return userLocale_.emplace(NumberLocale::user()); }

const clsCommand& clsCommandList::Command(std::int32_t position) const {
    if (position < 1 || position > commandCount()) throw automation_error(ErrorNumber::SubscriptOutOfRange);
    return script_->statements[static_cast<std::size_t>(position - 1)];
}

bool clsCommandList::EnvFinishLoopFlag() const {
    if (!finishLoopItem_) throw automation_error(ErrorNumber::ObjectNotSet);
    return toBoolean(script_->dataMemory.at(*finishLoopItem_).CurrentValue(), locale());
}

void clsCommandList::setEnvFinishLoopFlag(bool flag) {
    if (!finishLoopItem_) throw automation_error(ErrorNumber::ObjectNotSet);
    script_->dataMemory.at(*finishLoopItem_).setCurrentValue(Value::ofBoolean(flag));
}

void clsCommandList::DisplayDataInListViews(TableView* c_CmdListView, TableView* c_DataListView) {
    const ScriptUse use(*this);
    const NumberLocale numbers = locale();  // a copy: a view may call back and load a script
    if (c_CmdListView != nullptr) {
        c_CmdListView->prepare();
        c_CmdListView->addColumn(u"No.");
        c_CmdListView->addColumn(u"Function");
        for (std::int32_t n = 1; n <= maximumParameters; ++n) c_CmdListView->addColumn(u"P" + decimal(n));
        for (std::int32_t n = 1; n <= commandCount(); ++n) {
            const clsCommand& command = Command(n);
            c_CmdListView->addRow(decimal(n));
            c_CmdListView->setSubItem(1, functionDefinition(command.CommandType()).Name);
            command.DisplayInListItem(*c_CmdListView, numbers);
        }
        c_CmdListView->fitColumns();
    }
    if (c_DataListView != nullptr) {
        c_DataListView->prepare();
        for (const std::u16string_view header : {u"No.", u"Identifier", u"Type", u"Initial Val"})
            c_DataListView->addColumn(header);
        DataMemory().DisplayInListView(*c_DataListView, numbers);
        c_DataListView->fitColumns();
    }
}

}  // namespace corvane
