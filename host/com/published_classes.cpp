#include "host/com/published_classes.h"

#include "host/com/clsProgramFunctionList_com.h"
#include "host/com/clsScriptControl_com.h"
#include "host/com/records_com.h"

namespace corvane {

extern constexpr PublishedInterface publishedScriptControl{
    IID__clsScriptControl,     &CLSID_clsScriptControl, &DIID___clsScriptControl, u"prjCorvaneScript.clsScriptControl",
    u"Corvane script control", createScriptControl};
extern constexpr PublishedInterface publishedProgramFunctionList{IID__clsProgramFunctionList,
                                                                 &CLSID_clsProgramFunctionList,
                                                                 nullptr,
                                                                 u"prjCorvaneScript.clsProgramFunctionList",
                                                                 u"Corvane program function list",
                                                                 createProgramFunctionList};
extern constexpr PublishedInterface publishedProgramFunction{
    IID__clsProgramFunction,     &CLSID_clsProgramFunction, nullptr, u"prjCorvaneScript.clsProgramFunction",
    u"Corvane program function", createProgramFunction};
extern constexpr PublishedInterface publishedDataSetParameters{
    IID__clsDataSetParameters,      &CLSID_clsDataSetParameters, nullptr, u"prjCorvaneScript.clsDataSetParameters",
    u"Corvane data set parameters", createDataSetParameters};
extern constexpr PublishedInterface publishedScriptParamList{
    IID__clsScriptParamList,          &CLSID_clsScriptParamList, nullptr, u"prjCorvaneScript.clsScriptParamList",
    u"Corvane script parameter list", createScriptParamList};
// Made by the program function list only.
extern constexpr PublishedInterface publishedCollection{
    IID__Collection, nullptr, nullptr, u"prjCorvaneScript.Collection", u"Corvane collection", nullptr};

extern constexpr std::array<const PublishedInterface*, 5> creatableClasses{
    &publishedScriptControl, &publishedProgramFunctionList, &publishedProgramFunction, &publishedDataSetParameters,
    &publishedScriptParamList};

}  // namespace corvane
