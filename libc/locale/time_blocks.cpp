// Day and month names and date formats: "C" and Finnish ("FI", texts in ISO8859-1).
#include "locale/block_builder.h"
#include "locale/blocks.h"

namespace kv::locale {

namespace {

struct NameList {
  const char *const *names;
  unsigned count, stride;
};

struct TimeContent {
  const char *name;
  NameList lists[4]; // abbreviated days, days, abbreviated months, months
  const char *texts[6]; // morning, afternoon, date and time, date, time, 12-hour time
};

// Where each of the six texts' offsets goes among the fourteen words.
constexpr unsigned text_words[6] = {time_am,     time_pm,    time_d_t_fmt,
                                    time_d_fmt, time_t_fmt, time_t_fmt_ampm};

constexpr void write_block(BlockWriter &w, const TimeContent &content) {
  w.begin(content.name);
  size_t words = w.position();
  for (int i = 0; i < 14; ++i)
    w.word(0);
  for (unsigned k = 0; k < 4; ++k) {
    const NameList &l = content.lists[k];
    w.patch_word(words + 4 * (time_abday + k), w.data_offset());
    w.patch_word(words + 4 * (time_abday_stride + k), l.stride);
    for (unsigned i = 0; i < l.count; ++i)
      w.text(l.names[i], l.stride);
  }
  for (unsigned i = 0; i < 6; ++i) {
    w.patch_word(words + 4 * text_words[i], w.data_offset());
    w.text(content.texts[i]);
  }
  w.end();
}

constexpr const char *c_abday[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr const char *c_day[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                 "Thursday", "Friday", "Saturday"};
constexpr const char *c_abmon[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr const char *c_mon[] = {"January", "February", "March",     "April",
                                 "May",     "June",     "July",      "August",
                                 "September", "October", "November", "December"};

constexpr const char *fi_abday[] = {"Su", "Ma", "Ti", "Ke", "To", "Pe", "La"};
constexpr const char *fi_day[] = {"Sunnuntai", "Maanantai", "Tiistai", "Keskiviikko",
                                  "Torstai",   "Perjantai", "Lauantai"};
constexpr const char *fi_abmon[] = {"Tammi", "Helmi", "Maalis",   "Huhti", "Touko", "Kes\xe4",
                                    "Hein\xe4", "Elo", "Syys", "Loka",  "Marras", "Joulu"};
constexpr const char *fi_mon[] = {"Tammikuu", "Helmikuu", "Maaliskuu",  "Huhtikuu",
                                  "Toukokuu", "Kes\xe4kuu", "Hein\xe4kuu", "Elokuu",
                                  "Syyskuu",  "Lokakuu",  "Marraskuu",  "Joulukuu"};

constexpr TimeContent c_content = {
    "C",
    {{c_abday, 7, 4}, {c_day, 7, 10}, {c_abmon, 12, 4}, {c_mon, 12, 10}},
    {"AM", "PM", "%a %b %e %H:%M:%S %Y", "%m/%d/%y", "%H:%M:%S", "%I:%M:%S %p"}};
constexpr TimeContent fi_content = {
    "FI",
    {{fi_abday, 7, 4}, {fi_day, 7, 12}, {fi_abmon, 12, 7}, {fi_mon, 12, 10}},
    {"AM", "PM", "%a %e. %Bta %Y %H:%M:%S", "%d.%m.%Y", "%H:%M:%S", "%I:%M:%S %p"}};

constexpr size_t c_size = block_size(c_content);
constexpr size_t fi_size = block_size(fi_content);
constinit const Block<c_size> c_block = build_block<c_size>(c_content);
constinit const Block<fi_size> fi_block = build_block<fi_size>(fi_content);

} // namespace

const unsigned char *const time_c = c_block.bytes + header_size("C");
const unsigned char *const time_fi = fi_block.bytes + header_size("FI");

} // namespace kv::locale
