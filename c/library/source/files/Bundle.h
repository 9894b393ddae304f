#pragma once

#include "logger/Logger.h"
#include "strings/String.h"

struct Vector;

// Bundles: many files in one, one after the other, as a rule compressed as a
// whole. A plain bundle is a header line, "$Quorel_Bundle_v1", and for each file
//
//     its size in decimal digits, and a newline
//     its name without directories, and a newline
//     its bytes, as they are
//
// with nothing between or behind. A compressed bundle is that in one gzip stream,
// under a name that ends in ".gz".
//
// All functions give true or false and log what went wrong. A null argument fails.
// Whatever they open is closed when they return, and no more than blocks of fixed
// size are held in memory. An original that is to be deleted stays when anything
// before that was short or failed.

// Makes a bundle of the files in `files`, a vector of paths; null makes an empty
// one. An end such as ".gz" is cut from the name of the plain bundle, which is
// overwritten and, with `zip`, replaced by a compressed one with ".gz" added. When
// a file cannot be added nothing is left of it. A bundle cannot hold itself.
bool bundleMake(const String* target, const Vector* files, bool zip, bool deleteOriginals,
                Logger* logger);

// Adds files to a plain bundle. A file that grows meanwhile is added to its end
// behind the size that it had. Short reads and writes count as success; what a
// failure has left half written stays in the bundle. Names that cannot stand on a
// line of their own, and the bundle itself, are refused before anything is written.
bool bundleAppend(const String* bundle, const Vector* files, bool deleteOriginals, Logger* logger);

// Unpacks into `directory`, which must exist. A source that ends in ".gz" is first
// decompressed beside itself, and the plain bundle stays there. Names are used as
// they stand in the bundle, with separators and "..": a bundle of a stranger can
// write anywhere. No file is overwritten: a name that is taken becomes a new one.
// `extracted` may be null; it receives a new String for each file made, which the
// caller owns, also on failure. A bundle that ends too early is no failure. With
// `deleteOriginal` the source goes, and the plain bundle too.
bool bundleExplode(const String* source, const String* directory, Vector* extracted,
                   bool deleteOriginal, Logger* logger);

// Appends two marks and the bytes of `source` to `target`, of a source of 4 GiB
// and more what its size exceeds a multiple of 4 GiB by.
bool bundleAttach(const String* source, const String* target, bool deleteOriginal, Logger* logger);

// Compress a file to one of the same name with ".gz" added, or to `target`, to
// which ".gz" is added unless it ends so.
bool bundleZip(const String* source, bool deleteOriginal, Logger* logger);
bool bundleZipTrg(const String* source, const String* target, bool deleteOriginal, Logger* logger);

// Decompress a file to its name without ".gz", or to `target`. Where the content
// is a multiple of 4096 bytes long, and not empty, its last 4096 bytes come out
// twice. That is part of the format by now: it is kept on purpose.
bool bundleUnZip(const String* source, bool deleteOriginal, Logger* logger);
bool bundleUnZipTrg(const String* source, const String* target, bool deleteOriginal,
                    Logger* logger);
