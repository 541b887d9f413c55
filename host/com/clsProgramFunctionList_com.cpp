#include "host/com/clsProgramFunctionList_com.h"

#include "host/clsProgramFunctionList.h"
#include "host/com/automation_object.h"
#include "host/com/collection_com.h"
#include "host/com/component_services.h"

namespace corvane {
namespace {

class ProgramFunctionListObject final : public AutomationObject<_clsProgramFunctionList> {
public:
    ProgramFunctionListObject()
        : AutomationObject(publishedProgramFunctionList),
          services_(hostArithmetic()),
          list_({services_, services_}, {}, [] { return Reference<FunctionCollection>(new CollectionObject); }) {}

    HRESULT STDMETHODCALLTYPE get_ScriptLoaded(VARIANT_BOOL* tValue) override {
        return call([&] { *tValue = variantBool(list_.ScriptLoaded()); }, tValue);
    }
    HRESULT STDMETHODCALLTYPE get_FunctionList(_Collection** tValue) override {
        return call([&] { *tValue = automationReference(list_.FunctionList()); }, tValue);
    }
    HRESULT STDMETHODCALLTYPE LoadProgramScript_FromFile(BSTR* tFileName, VARIANT_BOOL* tResult) override {
        if (tResult != nullptr) *tResult = VARIANT_FALSE;
        return call(
            [&] {
                const std::u16string fileName(viewOf(*tFileName));
                *tResult = variantBool(list_.LoadProgramScript_FromFile(fileName));
            },
            tFileName, tResult);
    }
    HRESULT STDMETHODCALLTYPE LoadProgramScript_FromDatabase(BSTR* tScriptString, BSTR* tScriptName, LONG* tUID,
                                                             LONG* tVersion, VARIANT_BOOL* tResult) override {
        if (tResult != nullptr) *tResult = VARIANT_FALSE;
        return call(
            [&] {
                const std::u16string script(viewOf(*tScriptString));
                const std::u16string name(viewOf(*tScriptName));
                *tResult = variantBool(list_.LoadProgramScript_FromDatabase(script, name, *tUID, *tVersion));
            },
            tScriptString, tScriptName, tUID, tVersion, tResult);
    }
    HRESULT STDMETHODCALLTYPE CreateFunctionList(_Collection** tFunctionList, VARIANT_BOOL* tResult) override {
        if (tResult != nullptr) *tResult = VARIANT_FALSE;
        return call(
            [&] {
                Reference<FunctionCollection> listing;
                const bool result = list_.CreateFunctionList(listing);
                if (listing) {
                    _Collection* const old = std::exchange(*tFunctionList, automationReference(listing));
                    if (old != nullptr) old->Release();
                }
                *tResult = variantBool(result);
            },
            tFunctionList, tResult);
    }

private:
    // All collections of this list are made by it.
    static _Collection* automationReference(const Reference<FunctionCollection>& collection) {
        auto* const object = static_cast<CollectionObject*>(collection.get());
        return ComReference<_Collection>(object).detach();
    }

    HostSideServices services_;
    clsProgramFunctionList list_;
};

}  // namespace

ComReference<IUnknown> createProgramFunctionList() {
    return ComReference<IUnknown>(static_cast<_clsProgramFunctionList*>(new ProgramFunctionListObject));
}

}  // namespace corvane
