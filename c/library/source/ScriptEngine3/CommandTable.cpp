#include "ScriptEngine3/CommandTable.h"

#include "ScriptEngine3/CommandFamilies.h"

namespace {

// Walks the numbers of a target list: "1,3" or "1-100".
class TargetNumbers {
  public:
    explicit TargetNumbers(const char* numbers) : at_(numbers) {}

    bool next(uint32_t* number) {
        if (current_ < last_) {
            *number = ++current_;
            return true;
        }
        if (at_ == nullptr || *at_ == 0) return false;
        current_ = last_ = read();
        if (*at_ == '-') {
            ++at_;
            last_ = read();
        }
        if (*at_ == ',') ++at_;
        *number = current_;
        return true;
    }

  private:
    uint32_t read() {
        uint32_t value = 0;
        for (; *at_ >= '0' && *at_ <= '9'; ++at_) value = value * 10 + (*at_ - '0');
        return value;
    }

    const char* at_;
    uint32_t current_ = 0;
    uint32_t last_ = 0;
};

}  // namespace

bool scriptEngineRegisterFunction(ParseTables* tables, const CommandRow* row) {
    if (tables == nullptr || row == nullptr || row->name == nullptr || row->handler == nullptr)
        return false;
    if (tables->commands.find(row->name) != NameTable::kAbsent) return false;
    const auto order = static_cast<uint32_t>(tables->commandDefs.size());
    return tables->commands.add(row->name, order) && tables->commandDefs.push({row, order});
}

bool scriptEngineRegisterDefaultFunctions(ScriptEngine* engine) {
    for (const CommandFamily& family : commandFamilies())
        for (const CommandRow& row : family.rows)
            if (!scriptEngineRegisterFunction(engine->parseTables, &row)) return false;
    return true;
}

const CommandRow* scriptEngineFindFunction(const ParseTables* tables, std::string_view name) {
    if (tables == nullptr) return nullptr;
    const uint32_t order = tables->commands.find(name);
    return order == NameTable::kAbsent ? nullptr : tables->commandDefs[order].row;
}

bool scriptEngineValidateArgs(ScriptEngine* engine, const CommandRow* command,
                              const GrowArray<std::string_view>& args) {
    const size_t count = args.size();
    if (count < command->minArgs || count > command->maxArgs) {
        logError(engine->logger, "scriptEngineValidateArgs: #::1132", command->name);
        logLocation(engine->logger, kLogError);
        return false;
    }
    TargetNumbers targets(command->targetSpec);
    uint32_t number;
    while (targets.next(&number) && number <= count) {
        if (number == 0) {
            logError(engine->logger, "scriptEngineValidateArgs: #::1135", number, command->name);
            return false;
        }
        if (scriptObjectIsValidName(args[number - 1])) continue;
        logError(engine->logger,
                 "scriptEngineValidateArgs: Invalid argument \"%S\" to function \"%S\" - expected "
                 "variable name",
                 args[number - 1], command->name);
        return false;
    }
    return true;
}
