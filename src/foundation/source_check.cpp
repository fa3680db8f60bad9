// SPDX-License-Identifier: MIT
//
// SQLite states the database's pages in its header; that number is valid when the header's change
// counter equals the "version valid for" number, and when no write-ahead log holds later pages. The
// headers of .shp and .shx state their length in 16-bit words, that of .dbf the number of records
// and their length. A CSV file states nothing, but most of one with geometries is quoted text.
#include "foundation/source_check.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <cpl_vsi.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <vector>

namespace jws::detail {
namespace {

using Bytes = std::vector<unsigned char>;

std::uint64_t bigEndian(const Bytes& bytes, std::size_t at, int count) {
    std::uint64_t value = 0;
    for (int i = 0; i < count; ++i) value = value << 8 | bytes[at + static_cast<std::size_t>(i)];
    return value;
}

std::uint64_t littleEndian(const Bytes& bytes, std::size_t at, int count) {
    std::uint64_t value = 0;
    for (int i = count; i-- > 0;) value = value << 8 | bytes[at + static_cast<std::size_t>(i)];
    return value;
}

std::uint64_t sizeOf(const std::string& path) {
    VSIStatBufL stat;
    return VSIStatL(path.c_str(), &stat) == 0 ? static_cast<std::uint64_t>(stat.st_size) : 0;
}

/// `count` bytes from `offset`, fewer where the file ends.
Bytes bytesOf(const std::string& path, std::uint64_t offset, std::size_t count) {
    Bytes bytes(count);
    VSILFILE* file = VSIFOpenL(path.c_str(), "rb");
    if (file == nullptr) return Bytes();
    VSIFSeekL(file, offset, SEEK_SET);
    bytes.resize(VSIFReadL(bytes.data(), 1, count, file));
    VSIFCloseL(file);
    return bytes;
}

std::string cutShort(const std::string& path, std::uint64_t stated) {
    const std::uint64_t size = sizeOf(path);
    if (size >= stated) return std::string();
    return std::string(CPLGetFilename(path.c_str())) + " is cut short: it has " +
           std::to_string(size) + " of " + std::to_string(stated) + " bytes";
}

std::string damageOfDatabase(const std::string& path) {
    const Bytes header = bytesOf(path, 0, 100);
    if (header.size() < 100 ||
        !std::equal(header.begin(), header.begin() + 15, "SQLite format 3") ||
        bigEndian(header, 24, 4) != bigEndian(header, 92, 4) || sizeOf(path + "-wal") > 0) {
        return std::string();
    }
    const std::uint64_t pageSize = bigEndian(header, 16, 2);
    return cutShort(path, (pageSize == 1 ? 65536 : pageSize) * bigEndian(header, 28, 4));
}

std::string damageOfShapes(const std::string& path) {
    const Bytes header = bytesOf(path, 0, 100);
    if (header.empty()) return std::string();
    return cutShort(path, header.size() < 100 ? 100 : 2 * bigEndian(header, 24, 4));
}

std::string damageOfTable(const std::string& path) {
    const Bytes header = bytesOf(path, 0, 32);
    if (header.empty()) return std::string();
    if (header.size() < 32) return cutShort(path, 32);
    return cutShort(path, littleEndian(header, 8, 2) +
                              littleEndian(header, 4, 4) * littleEndian(header, 10, 2));
}

bool hasEnding(const std::string& path, const char* ending) {
    return EQUAL(CPLGetExtension(path.c_str()), ending);
}

std::string damageOfShapefile(const std::string& shp) {
    const std::string base = shp.substr(0, shp.size() - 3);
    const bool upper = shp.back() == 'P';
    std::string damage = damageOfShapes(shp);
    if (damage.empty()) damage = damageOfShapes(base + (upper ? "SHX" : "shx"));
    if (damage.empty()) damage = damageOfTable(base + (upper ? "DBF" : "dbf"));
    return damage;
}

/// A table whose last line has no end and whose quotes do not pair ends within a quoted text. The
/// quotes are counted only when the line end is missing.
std::string damageOfTextTable(const std::string& path) {
    constexpr std::size_t chunk = std::size_t{1} << 20;
    const std::uint64_t size = sizeOf(path);
    const Bytes last = bytesOf(path, size > 0 ? size - 1 : 0, 1);
    if (last.empty() || last[0] == '\n' || last[0] == '\r') return std::string();
    std::uint64_t quotes = 0;
    for (std::uint64_t at = 0; at < size; at += chunk) {
        const Bytes bytes = bytesOf(path, at, chunk);
        quotes += static_cast<std::uint64_t>(std::count(bytes.begin(), bytes.end(), '"'));
    }
    if (quotes % 2 == 0) return std::string();
    return std::string(CPLGetFilename(path.c_str())) + " is cut short: it ends within a text";
}

/// The last character that is not white space; 0 for an empty or missing file.
char lastCharacter(const std::string& path) {
    const std::uint64_t size = sizeOf(path);
    const std::size_t length = static_cast<std::size_t>(std::min<std::uint64_t>(size, 256));
    const Bytes tail = bytesOf(path, size - length, length);
    for (auto c = tail.rbegin(); c != tail.rend(); ++c) {
        if (std::isspace(*c) == 0) return static_cast<char>(*c);
    }
    return '\0';
}

}  // namespace

std::string damageOf(const std::string& path, const std::string& driver) {
    if (driver == "GPKG" || driver == "SQLite") return damageOfDatabase(path);
    if (driver == "CSV") return damageOfTextTable(path);
    if (driver != "ESRI Shapefile") return std::string();
    if (hasEnding(path, "shp")) return damageOfShapefile(path);
    if (hasEnding(path, "dbf")) return damageOfTable(path);
    std::string damage;
    char** files = VSIReadDir(path.c_str());
    for (char** file = files; file != nullptr && *file != nullptr && damage.empty(); ++file) {
        const std::string member = path + "/" + *file;
        if (hasEnding(member, "shp")) damage = damageOfShapefile(member);
    }
    CSLDestroy(files);
    return damage;
}

std::string damageOfWrittenFile(const std::string& path, const std::string& driver) {
    const std::string damage = damageOf(path, driver);
    if (!damage.empty()) return damage;
    const bool json = driver == "GeoJSON" || driver == "GeoJSONSeq";
    const bool xml = driver == "GML" || driver == "KML" || driver == "GPX";
    if ((json && lastCharacter(path) != '}') || (xml && lastCharacter(path) != '>')) {
        return "the file could not be written to its end";
    }
    return std::string();
}

}  // namespace jws::detail
