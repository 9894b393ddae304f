#include "ScriptEngine3/ResultSetting.h"

void setOtherResult(ScriptEngine* engine, ScriptObject* object, bool value) {
    scriptObjectSetStringValue(engine, object, value ? "1" : "0");
}
