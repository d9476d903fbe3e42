#include "tools/common/ErrorTexts.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "tools/common/Language.h"

namespace terminal {
namespace {

struct ErrorText {
  int error;
  const char* russian;
};
// Those that a device, a file, a socket or a full disk may give.
constexpr ErrorText kErrors[] = {
    {EACCES, "нет прав доступа"},
    {EADDRINUSE, "адрес уже занят"},
    {EBADF, "поток закрыт"},
    {EBUSY, "устройство занято"},
    {ECONNREFUSED, "соединение отвергнуто"},
    {ECONNRESET, "соединение разорвано"},
    {EDQUOT, "превышена дисковая квота"},
    {EEXIST, "файл уже существует"},
    {EFBIG, "файл слишком велик"},
    {EINVAL, "недопустимый параметр"},
    {EIO, "ошибка ввода-вывода"},
    {EISDIR, "это каталог"},
    {ELOOP, "слишком много ссылок подряд"},
    {EMFILE, "открыто слишком много файлов"},
    {ENAMETOOLONG, "слишком длинное имя файла"},
    {ENFILE, "в системе открыто слишком много файлов"},
    {ENODEV, "нет такого устройства"},
    {ENOENT, "нет такого файла или каталога"},
    {ENOMEM, "не хватает памяти"},
    {ENOSPC, "на устройстве не осталось места"},
    {ENOTDIR, "это не каталог"},
    {ENOTSOCK, "это не сокет"},
    {ENOTTY, "устройство не поддерживает этого"},
    {ENXIO, "за этим файлом нет устройства"},
    {EPERM, "действие не разрешено"},
    {EPIPE, "канал закрыт"},
    {EPROTO, "ошибка протокола"},
    {EPROTOTYPE, "сокет другого вида"},
    {EROFS, "файловая система только для чтения"},
    {ETIMEDOUT, "время ожидания истекло"},
};

constexpr bool kIs64Bit = sizeof(void*) == 8;
constexpr Text kOtherWordSize = {kIs64Bit ? "is a 32-bit library, and this program is 64-bit"
                                          : "is a 64-bit library, and this program is 32-bit",
                                 kIs64Bit ? "32-битная библиотека, а эта программа 64-битная"
                                          : "64-битная библиотека, а эта программа 32-битная"};
constexpr Text kNoLibrary = {"is no shared library", "не разделяемая библиотека"};
constexpr Text kNoComponent = {"is no component: it lacks ", "не компонента: в ней нет "};
constexpr Text kNeeds = {"needs a library that is not installed: ",
                         "нужна библиотека, которая не установлена: "};

constexpr std::string_view kUndefined = "undefined symbol: ";
constexpr std::string_view kCannotOpen = ": cannot open shared object file: ";

// Parts of the loader's text, and what they mean.
constexpr std::pair<std::string_view, Text> kLoaderTexts[] = {
    {"wrong ELF class", kOtherWordSize},
    {"invalid ELF header", kNoLibrary},
    {"file too short", kNoLibrary},
};

}  // namespace

std::string describe(int error) {
  const auto* const known = std::find_if(std::begin(kErrors), std::end(kErrors),
                                         [&](const ErrorText& row) { return row.error == error; });
  const std::string russian =
      known == std::end(kErrors) ? "ошибка " + std::to_string(error) : known->russian;
  const std::string english = std::generic_category().message(error);
  return say({english.c_str(), russian.c_str()});
}

std::string messageOf(const std::exception& error) {
  std::string message = error.what();
  const auto* const system = dynamic_cast<const std::system_error*>(&error);
  if (!system) return message;
  const std::string text = system->code().message();
  if (message.ends_with(text)) {
    message.replace(message.size() - text.size(), text.size(), describe(system->code().value()));
  }
  return message;
}

std::string whyNotLoaded(const std::string& library, std::string_view loaderText) {
  const std::string start = library + ": ";
  for (const auto& [part, meaning] : kLoaderTexts) {
    if (loaderText.find(part) != loaderText.npos) return start + say(meaning);
  }
  if (const std::size_t at = loaderText.find(kUndefined); at != loaderText.npos) {
    return start + say(kNoComponent) + std::string(loaderText.substr(at + kUndefined.size()));
  }
  const std::size_t at = loaderText.find(kCannotOpen);
  if (at != loaderText.npos && loaderText.substr(0, at) != library) {
    return start + say(kNeeds) + std::string(loaderText.substr(0, at));
  }
  // The rest are errors of reading the file, which end in the C library's text for them.
  for (const ErrorText& row : kErrors) {
    if (loaderText.ends_with(std::generic_category().message(row.error))) {
      return start + describe(row.error);
    }
  }
  return std::string(loaderText);
}

}  // namespace terminal
