#include "types/language.h"

#include "types/text_encoding.h"

#include <algorithm>

namespace practice {

namespace {

constexpr Language all[] = {
    {"us_english", "English", "mdy",
     "January,February,March,April,May,June,July,August,September,October,November,December",
     "Jan,Feb,Mar,Apr,May,Jun,Jul,Aug,Sep,Oct,Nov,Dec",
     "Monday,Tuesday,Wednesday,Thursday,Friday,Saturday,Sunday", 0, 7, 1033, 1033},
    {"Deutsch", "German", "dmy",
     "Januar,Februar,März,April,Mai,Juni,Juli,August,September,Oktober,November,Dezember",
     "Jan,Feb,Mär,Apr,Mai,Jun,Jul,Aug,Sep,Okt,Nov,Dez",
     "Montag,Dienstag,Mittwoch,Donnerstag,Freitag,Samstag,Sonntag", 1, 1, 1031, 1031},
    {"Français", "French", "dmy",
     "janvier,février,mars,avril,mai,juin,juillet,août,septembre,octobre,novembre,décembre",
     "janv,févr,mars,avr,mai,juin,juil,août,sept,oct,nov,déc",
     "lundi,mardi,mercredi,jeudi,vendredi,samedi,dimanche", 2, 1, 1036, 1036},
    {"Español", "Spanish", "dmy",
     "Enero,Febrero,Marzo,Abril,Mayo,Junio,Julio,Agosto,Septiembre,Octubre,Noviembre,Diciembre",
     "Ene,Feb,Mar,Abr,May,Jun,Jul,Ago,Sep,Oct,Nov,Dic",
     "Lunes,Martes,Miércoles,Jueves,Viernes,Sábado,Domingo", 5, 1, 3082, 3082},
    {"Italiano", "Italian", "dmy",
     "gennaio,febbraio,marzo,aprile,maggio,giugno,luglio,agosto,settembre,ottobre,novembre,dicembre",
     "gen,feb,mar,apr,mag,giu,lug,ago,set,ott,nov,dic",
     "lunedì,martedì,mercoledì,giovedì,venerdì,sabato,domenica", 6, 1, 1040, 1040},
    {"British", "British English", "dmy",
     "January,February,March,April,May,June,July,August,September,October,November,December",
     "Jan,Feb,Mar,Apr,May,Jun,Jul,Aug,Sep,Oct,Nov,Dec",
     "Monday,Tuesday,Wednesday,Thursday,Friday,Saturday,Sunday", 23, 1, 2057, 1033},
};

/// Small letters of the western alphabets.
std::string folded(std::string_view text)
{
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        const char32_t code = nextCodePoint(text, at);
        const bool capital = (code >= U'A' && code <= U'Z') || (code >= U'À' && code <= U'Þ' && code != U'×');
        appendUtf8(result, capital ? code + 0x20 : code);
    }
    return result;
}

bool sameWord(std::string_view left, std::string_view right)
{
    return folded(left) == folded(right);
}

} // namespace

std::span<const Language> languages()
{
    return all;
}

const Language& usEnglish()
{
    return all[0];
}

const Language* findLanguage(std::string_view name)
{
    const auto* found = std::find_if(std::begin(all), std::end(all), [name](const Language& language) {
        return sameWord(language.name, name) || sameWord(language.alias, name);
    });
    return found == std::end(all) ? nullptr : found;
}

std::string_view listedName(std::string_view list, int place)
{
    for (; place > 0; --place)
        list.remove_prefix(list.find(',') + 1);
    return list.substr(0, list.find(','));
}

int monthNamed(const Language& language, std::string_view word)
{
    for (int month = 1; month <= 12; ++month) {
        if (sameWord(word, listedName(language.months, month - 1)) ||
            sameWord(word, listedName(language.shortMonths, month - 1)))
            return month;
    }
    return 0;
}

} // namespace practice
