#include "Export/Identifiers.h"

#include <algorithm>

#include "Shared/Text.h"

namespace kiln {

namespace {

// Key words, also of later versions; what <math.h> and compilers define; functions. Of those that
// come for several types the one for double: a last "f" or "l" says the others.
constexpr std::string_view kWordsOfC =
    " alignas alignof asm auto bool break case char const constexpr continue default do double"
    " else enum extern false float for goto if inline int long nullptr register restrict"
    " return short signed sizeof static static_assert struct switch thread_local true typedef"
    " typeof typeof_unqual union unsigned void volatile while"
    " INFINITY NAN double_t float_t fpclassify i386 isfinite isgreater isgreaterequal isless"
    " islessequal islessgreater isnormal isunordered linux math_errhandling signbit unix"
    " abort abs accept access acos acosh alarm asctime asin asinh atan atan2 atanh atexit atof"
    " atoi atol bcmp bcopy bind bsearch bzero calloc cbrt ceil chdir clearerr clock close"
    " connect copysign cos cosh ctime difftime div drem dup erf erfc exec exit exp exp10 exp2"
    " expm1 fabs fclose fdim feof fflush ffs fgetc fgets finite floor fma fmax fmin fmod fopen"
    " fork fprintf fputc fputs fread free freopen frexp fscanf fseek ftell fwrite gamma getc"
    " getchar getenv gets gmtime hypot ilogb imaxabs index isalnum isalpha isblank iscntrl"
    " isdigit isgraph isinf islower isnan isprint ispunct isspace isupper isxdigit j0 j1 jn"
    " kill labs ldexp ldiv lgamma link listen llabs llrint llround localeconv localtime log"
    " log10 log1p log2 logb longjmp lrint lround main malloc mblen memchr memcmp memcpy"
    " memmove memset mktime modf nan nearbyint nextafter nexttoward open pause perror pipe"
    " poll pow pow10 printf putc putchar puts qsort raise rand read realloc recv remainder"
    " remove remquo rename rewind rindex rint round roundeven scalb scalbln scalbn scanf"
    " select send setbuf setjmp setlocale setvbuf shutdown signal signgam significand sin"
    " sincos sinh sleep snprintf socket sprintf sqrt srand sscanf stat stpcpy stpncpy"
    " strcasecmp strcat strchr strcmp strcoll strcpy strcspn strdup strerror strftime strlen"
    " strncasecmp strncat strncmp strncpy strndup strnlen strpbrk strrchr strspn strstr strtod"
    " strtof strtok strtol strtoul strxfrm sync system tan tanh tgamma time tmpfile tmpnam"
    " tolower toupper trunc ungetc unlink vfprintf vfscanf vprintf vscanf vsnprintf vsprintf"
    " vsscanf wait write y0 y1 yn ";

// Those of the language, and what readers take for words that change a term or stand for a method.
constexpr std::string_view kWordsOfFcl =
    " accu accumulation act activation and any array asum at bdif bool bsum byte coa cog cogs"
    " com default defuzzify dword einstein else end_defuzzify end_function_block end_fuzzify"
    " end_if end_options end_ruleblock end_var extremely function_block fuzzify if int is lm"
    " lwa max mean method min mom nc nipmax nipmin none norm not nsum of options or prod range"
    " real rm rule ruleblock seldom sint smallest somewhat string term then time var var_input"
    " var_output very weighted with word ";

bool IsOneOf(std::string_view words, const std::string& word) {
  return words.find(" " + word + " ") != words.npos;
}

bool IsLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// `name` with nothing but letters, digits and "_" in it, a letter first.
std::string Lettered(std::string_view name) {
  std::string result(name);
  std::ranges::replace_if(
      result, [](char c) { return !IsLetter(c) && !IsDigit(c); }, '_');
  return !result.empty() && IsLetter(result.front()) ? result : "n_" + result;
}

bool IsWordOfC(const std::string& word) {
  if (IsOneOf(kWordsOfC, word)) return true;
  for (const char* const macros : {"FP_", "HUGE_", "MATH_", "M_"}) {  // of <math.h>
    if (word.starts_with(macros)) return true;
  }
  const bool typed = word.ends_with('f') || word.ends_with('l');
  return typed && IsOneOf(kWordsOfC, word.substr(0, word.size() - 1));
}

}  // namespace

std::string CIdentifier(std::string_view name) {
  std::string identifier = Lettered(name);
  if (IsWordOfC(identifier)) identifier += '_';
  return identifier;
}

std::string CommentText(std::string_view text) {
  std::string result(text);
  for (char& c : result) {
    const bool means_something = c == '*' || c == '?' || c == '\\' || c == '/';
    if (means_something || static_cast<unsigned char>(c) < ' ' || c == '\x7f') c = '_';
  }
  return result;
}

std::string FclIdentifier(std::string_view name) {
  std::string identifier;
  for (const char c : name) {
    const bool is_gap = !IsLetter(c) && !IsDigit(c);
    if (!is_gap) identifier += c;
    if (is_gap && !identifier.empty() && identifier.back() != '_') identifier += '_';
  }
  if (identifier.ends_with('_')) identifier.pop_back();
  if (identifier.empty()) return "n";
  const bool is_word = IsOneOf(kWordsOfFcl, FoldCase(identifier));
  return is_word || !IsLetter(identifier.front()) ? "n_" + identifier : identifier;
}

}  // namespace kiln
