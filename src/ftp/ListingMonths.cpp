#include "ftp/ListingMonths.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "ftp/ListingWords.h"

namespace corvane {
namespace {

// The names of each month between blanks, in small letters as far as they are ASCII.
constexpr std::array<std::string_view, 12> kNames = {
    " ene enero gen gennaio jan janeiro januar januari january janv janvier jän j\xE4n "
    "led oca sty tammi \xC9\xE1\xED Ιαν ιαν Янв янв \xD1\xCE\xD7 \xDF\xED\xE2 "
    "\xE9\xE1\xED \xF1\xCE\xD7 \xFF\xED\xE2 ",
    " feb febbraio febr febrero februar februari february fev fevereiro fevr fév févr "
    "février f\xE9v f\xE9vr f\xE9vrier helmi lut úno Şub şub \xC6\xC5\xD7 "
    "\xC6\xC5\xD7\xD2 Φεβ φεβ Фев фев февр \xD4\xE5\xE2 \xD6\xE5\xE2 \xDEub \xE6\xC5\xD7 "
    "\xF4\xE5\xE2 \xF4\xE5\xE2\xF0 \xF6\xE5\xE2 \xFAno \xFEub ",
    " bře b\xF8"
    "e maalis maart mar march mars marzo março mar\xE7o mrt mrz márc mär märz "
    "m\xE1rc m\xE4r m\xE4rz \xCC\xDC\xF1 \xCC\xE0\xF0 \xCC\xE1\xF1 \xCD\xC1\xD2 Μάρ Μαρ "
    "μαρ Мар мар \xEC\xE0\xF0 \xEC\xE1\xF1 \xED\xC1\xD2 ",
    " abr abril apr april aprile avr avril dub huhti kwi nis \xC0\xEF\xF0 \xC1\xD0\xD2 "
    "\xC1\xF0\xF1 ápr Απρ απρ Апр апр \xE0\xEF\xF0 \xE1pr \xE1\xD0\xD2 \xE1\xF0\xF1 ",
    " kvě kv\xEC mag maggio mai maio maj may mayo mei máj m\xE1j touko \xCC\xDC\xE9 "
    "\xCC\xE0\xE9 \xCC\xE1\xC0 \xCD\xC1\xCA \xCD\xC1\xD1 Μάι Μαΐ μαι Май май мая "
    "\xEC\xE0\xE9 \xEC\xE0\xFF \xEC\xE1\xE9 \xED\xC1\xCA ",
    " cze giu giugno haz jui juin jun june junho juni junio jún j\xFAn kesä kes\xE4 čen "
    "\xC8\xFE\xED \xC9\xC0\xCE \xC9\xC0\xCE\xD1 \xC9\xEF\xF5\xED \xC9\xEF\xFD\xED Ιουν "
    "Ιούν ιουν Июн июн июня \xE8"
    "en \xE8\xFE\xED \xE8\xFE\xED\xFF \xE9\xC0\xCE "
    "\xE9\xEF\xF5\xED ",
    " heinä hein\xE4 juil juillet jul julho juli julio july júl j\xFAl lip lug luglio tem "
    "čec \xC8\xFE\xEB \xC9\xC0\xCC \xC9\xC0\xCC\xD1 \xC9\xEF\xF5\xEB \xC9\xEF\xFD\xEB "
    "Ιουλ Ιούλ ιουλ Июл июл июля \xE8"
    "ec \xE8\xFE\xEB \xE8\xFE\xEB\xFF \xE9\xC0\xCC "
    "\xE9\xEF\xF5\xEB ",
    " ago agosto aou aout aoû août ao\xFB ao\xFBt aug august augustus ağu a\xF0u elo sie "
    "srp \xC0\xE2\xE3 \xC1\xD7\xC7 \xC1\xF5\xE3 \xC1\xFD\xE3 Αυγ Αύγ αυγ Авг авг "
    "\xE0\xE2\xE3 \xE1\xD7\xC7 \xE1\xF5\xE3 ",
    " eyl sep sept september septembre septiembre set setembro settembre syys szept wrz "
    "zář z\xE1\xF8 Σεπ σεπ Сен сен сент \xD1\xE5\xED \xD3\xC5\xCE \xD3\xC5\xCE\xD4 "
    "\xD3\xE5\xF0 \xF1\xE5\xED \xF1\xE5\xED\xF2 \xF3\xC5\xCE \xF3\xE5\xF0 ",
    " eki loka oct october octobre octubre okt oktober ott ottobre out outubro pa\xBC paź "
    "říj Οκτ οκτ \xCE\xEA\xF2 \xCF\xCB\xD4 \xCF\xEA\xF4 Окт окт \xEE\xEA\xF2 "
    "\xEF\xCB\xD4 \xEF\xEA\xF4 \xF8\xEDj ",
    " kas lis marras nov november novembre novembro noviembre \xCD\xEE\xFF \xCD\xEF\xDD "
    "\xCD\xEF\xE5 Νοέ Νοε νοε \xCE\xCF\xD1 \xCE\xCF\xD1\xC2 Ноя ноя нояб \xED\xEE\xFF "
    "\xED\xEE\xFF\xE1 \xED\xEF\xE5 \xEE\xCF\xD1 ",
    " ara dec december des dez dezember dezembro dic dicembre diciembre déc décembre "
    "d\xE9"
    "c d\xE9"
    "cembre gru joulu pro \xC4\xC5\xCB \xC4\xE5\xEA Δεκ δεκ Дек дек "
    "\xE4\xC5\xCB \xE4\xE5\xEA ",
};

// What stands behind a month's number in East Asian languages: UTF-8, GB 2312, Shift JIS, EUC.
constexpr std::array<std::string_view, 6> kSigns = {"\xE6\x9C\x88", "\xEC\x9B\x94", "\xD4\xC2",
                                                    "\x8C\x8E",     "\xB7\xEE",     "\xBF\xF9"};

unsigned NumberedMonth(std::string_view word) {
  const std::size_t digits = word.size() > 1 && IsDigit(word[1]) ? 2 : 1;
  const int number = NumberOf(word.substr(0, digits));
  const bool signedSo = std::ranges::find(kSigns, word.substr(digits)) != kSigns.end();
  return signedSo && number >= 1 && number <= 12 ? static_cast<unsigned>(number) : 0;
}

constexpr unsigned Packed(std::string_view word) {
  return static_cast<unsigned>(Lower(word[0])) << 16 | static_cast<unsigned>(Lower(word[1])) << 8 |
         static_cast<unsigned>(Lower(word[2]));
}

// By far the most frequent names; a byte that is not ASCII fits none of them.
unsigned EnglishMonth(std::string_view word) {
  switch (Packed(word)) {
    case Packed("jan"): return 1;
    case Packed("feb"): return 2;
    case Packed("mar"): return 3;
    case Packed("apr"): return 4;
    case Packed("may"): return 5;
    case Packed("jun"): return 6;
    case Packed("jul"): return 7;
    case Packed("aug"): return 8;
    case Packed("sep"): return 9;
    case Packed("oct"): return 10;
    case Packed("nov"): return 11;
    case Packed("dec"): return 12;
    default: return 0;
  }
}

}  // namespace

unsigned MonthOf(std::string_view word) {
  if (word.size() == 3) {
    if (const unsigned english = EnglishMonth(word); english != 0) return english;
  }
  if (!word.empty() && (word.back() == '.' || word.back() == ',')) word.remove_suffix(1);
  constexpr std::size_t kLongest = 16;
  if (word.size() < 2 || word.size() > kLongest) return 0;
  if (IsDigit(word.front())) return NumberedMonth(word);
  std::array<char, kLongest + 2> sought{};
  *std::ranges::transform(word, sought.begin() + 1, Lower).out = ' ';
  sought[0] = ' ';
  const std::string_view name(sought.data(), word.size() + 2);
  const auto found = std::ranges::find_if(kNames, [name](std::string_view names) {
    return names.find(name) != std::string_view::npos;
  });
  return found == kNames.end() ? 0 : static_cast<unsigned>(found - kNames.begin()) + 1;
}

}  // namespace corvane
