#include "engine/store/collation.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include <sqlite3.h>
#include <unicode/coll.h>
#include <unicode/uiter.h>

namespace practice {

namespace {

struct CollationTraits
{
    bool binary = false;
    bool caseSensitive = false;
    bool accentSensitive = true;
};

char upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool containsFolded(std::string_view text, std::string_view upperCasePart)
{
    const auto same = [](char a, char b) { return upper(a) == b; };
    return std::search(text.begin(), text.end(), upperCasePart.begin(), upperCasePart.end(), same) !=
           text.end();
}

CollationTraits traitsOf(std::string_view name)
{
    return {containsFolded(name, "_BIN"), containsFolded(name, "_CS"), !containsFolded(name, "_AI")};
}

std::string_view withoutTrailingBlanks(std::string_view text)
{
    const auto last = text.find_last_not_of(' ');
    return text.substr(0, last + 1);
}

bool isAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
}

// The order of ASCII characters under SQL Server's Latin collations: blanks and punctuation first,
// then digits, then letters with a before A.
constexpr std::string_view punctuation = " _-,;:!?/.`^~'\"()[]{}@$*\\&#%+<=>|";

struct AsciiWeights
{
    unsigned char primary[128] = {};
    constexpr AsciiWeights()
    {
        unsigned char next = 1;
        for (int c = 0; c < 32; ++c)
            primary[c] = next++;
        primary[127] = next++;
        for (const char c : punctuation)
            primary[static_cast<unsigned char>(c)] = next++;
        for (char c = '0'; c <= '9'; ++c)
            primary[static_cast<unsigned char>(c)] = next++;
        for (char c = 'a'; c <= 'z'; ++c) {
            primary[static_cast<unsigned char>(c)] = next;
            primary[static_cast<unsigned char>(c - 'a' + 'A')] = next++;
        }
    }
};

constexpr AsciiWeights weights;

int compareAscii(std::string_view left, std::string_view right, bool caseSensitive)
{
    const std::size_t common = std::min(left.size(), right.size());
    int byCase = 0;
    for (std::size_t i = 0; i < common; ++i) {
        const char a = left[i];
        const char b = right[i];
        if (a == b)
            continue;
        const int difference =
            weights.primary[static_cast<unsigned char>(a)] - weights.primary[static_cast<unsigned char>(b)];
        if (difference != 0)
            return difference;
        if (byCase == 0)
            byCase = b - a; // small letters have the greater code and come first
    }
    if (left.size() != right.size())
        return left.size() < right.size() ? -1 : 1;
    return caseSensitive ? byCase : 0;
}

const icu::Collator& collatorFor(const CollationTraits& traits)
{
    const auto make = [](icu::Collator::ECollationStrength strength, bool caseLevel) {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::Collator> collator(
            icu::Collator::createInstance(icu::Locale::getRoot(), status));
        collator->setStrength(strength);
        if (caseLevel)
            collator->setAttribute(UCOL_CASE_LEVEL, UCOL_ON, status);
        collator->setAttribute(UCOL_NORMALIZATION_MODE, UCOL_ON, status);
        return collator;
    };
    static const auto insensitive = make(icu::Collator::SECONDARY, false);
    static const auto caseSensitive = make(icu::Collator::TERTIARY, false);
    static const auto accentInsensitive = make(icu::Collator::PRIMARY, false);
    static const auto caseOnly = make(icu::Collator::PRIMARY, true);
    if (traits.accentSensitive)
        return traits.caseSensitive ? *caseSensitive : *insensitive;
    return traits.caseSensitive ? *caseOnly : *accentInsensitive;
}

int compareBy(const CollationTraits& traits, std::string_view left, std::string_view right)
{
    left = withoutTrailingBlanks(left);
    right = withoutTrailingBlanks(right);
    if (traits.binary)
        return left.compare(right);
    if (isAscii(left) && isAscii(right))
        return compareAscii(left, right, traits.caseSensitive);
    UErrorCode status = U_ZERO_ERROR;
    return collatorFor(traits).compareUTF8(icu::StringPiece(left.data(), static_cast<int>(left.size())),
                                           icu::StringPiece(right.data(), static_cast<int>(right.size())),
                                           status);
}

int onCompare(void* traits, int leftSize, const void* left, int rightSize, const void* right)
{
    return compareBy(*static_cast<const CollationTraits*>(traits),
                     {static_cast<const char*>(left), static_cast<std::size_t>(leftSize)},
                     {static_cast<const char*>(right), static_cast<std::size_t>(rightSize)});
}

void onCollationNeeded(void*, sqlite3* connection, int, const char* name)
{
    auto traits = std::make_unique<CollationTraits>(traitsOf(name));
    sqlite3_create_collation_v2(connection, name, SQLITE_UTF8, traits.release(), &onCompare,
                                [](void* owned) { delete static_cast<CollationTraits*>(owned); });
}

} // namespace

int compareText(std::string_view left, std::string_view right, std::string_view collation)
{
    return compareBy(traitsOf(collation), left, right);
}

bool isCollation(std::string_view name)
{
    if (containsFolded(name, "_BIN"))
        return true;
    return (containsFolded(name, "_CI_A") || containsFolded(name, "_CS_A")) && name.find(' ') == name.npos;
}

bool isCaseSensitive(std::string_view collation)
{
    const CollationTraits traits = traitsOf(collation);
    return traits.binary || traits.caseSensitive;
}

void registerCollations(sqlite3* connection)
{
    sqlite3_collation_needed(connection, nullptr, &onCollationNeeded);
}

} // namespace practice
