#pragma once

#include "config/ConfNode.h"
#include "containers/Map.h"
#include "files/BasicFile.h"
#include "logger/Logger.h"

// Reads a tree-shaped configuration file, gives and changes values by dotted
// paths, and puts the file back in one step. A node of a file is
//
//     name
//     {
//         type=WORD
//         value=TEXT      any number of these
//         ...             and of nodes
//     }
//
// with every line trimmed of blanks when it is read, and indented by tabs when
// it is written. Comments (`#`), empty lines and unknown keys are lost, and a
// node without a type is written without its values.
//
// Failures are logged here, and show as false or null.

struct ConfPatcher {
    String fileName;
    ConfNode* root;  // owned; null until a file was read
    Logger* logger;  // owned
    // Names with their percent signs, and what stands for them in values that are
    // asked for: owned `String`s. Nothing but a copy fills it.
    Map* variables;
};

// A record with no file name and no tree; null when memory runs out.
ConfPatcher* confPatchCreate();
// Ends the record and clears the pointer. Null-safe.
void confPatchDestroy(ConfPatcher** conf);
// A deep copy with a logger of its own; null when memory runs out.
ConfPatcher* confPatchCopy(const ConfPatcher* source);

template <>
struct OwnedTraits<ConfPatcher> {
    static void destroy(ConfPatcher** conf) { confPatchDestroy(conf); }
};

// Stores the name and reads the file. Once the file is open the tree that was
// there is gone, and after a failure what was read until then stays.
bool confPatchParse(ConfPatcher* conf, const String* fileName);
// The same from a file that is open for reading, up to the end of its root.
bool confPatchParseConf(ConfPatcher* conf, BasicFile* file);

// Writes the tree to the stored name: first to that name with ".tmp" behind it,
// which then takes the file's rights and, in one step, its name. Whatever fails,
// also when the process is killed, the file is the old one or the new one whole.
bool confPatchSave(ConfPatcher* conf);
// Writes the tree to a file that is open for writing, and flushes it.
bool confPatchSaveConf(ConfPatcher* conf, BasicFile* file);

// The node at a dotted path that begins with the root's name; null when there is
// none. The root itself has no path. `required` makes a missing node an error in
// the log.
ConfNode* confPatchGet(ConfPatcher* conf, const String* path, bool required);

// Strings on their way into a node or out of it.
struct ConfValues {
    ConfValues() = default;
    ConfValues(const ConfValues&) = delete;
    ConfValues& operator=(const ConfValues&) = delete;
    ~ConfValues() { vectorDestroyWith(&strings, stringDestroyElement); }

    // Adds a copy.
    void add(const String* text);

    Vector* strings = nullptr;  // null for none
    bool whole = true;          // memory has not run out
};

// Exchanges the values of the node at `path` for `values`. Those of file and
// directory names are normalised: dots resolved, every separator "\", and one at
// the end of a directory. False, with the node as it was, when there is no such
// node or memory runs out.
bool confSetOpen(ConfPatcher* conf, const String* path, ConfValues* values);

// Appends one value of a node, the variables in it expanded; false when memory runs out.
bool confAppendValue(const ConfPatcher* conf, const ConfNode* node, uint32_t index, String* out);

// The word for a node's type as scripts see it.
const char* confNodeTypeText(const ConfNode* node);
