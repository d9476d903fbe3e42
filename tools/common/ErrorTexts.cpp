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
  Text text;
};
// Those that a device, a file, a socket or a full disk may give.
constexpr ErrorText kErrors[] = {
    {EACCES, {"Permission denied", "нет прав доступа"}},
    {EADDRINUSE, {"Address already in use", "адрес уже занят"}},
    {EBADF, {"Bad file descriptor", "поток закрыт"}},
    {EBUSY, {"Device or resource busy", "устройство занято"}},
    {ECONNREFUSED, {"Connection refused", "соединение отвергнуто"}},
    {ECONNRESET, {"Connection reset by peer", "соединение разорвано"}},
    {EDQUOT, {"Disk quota exceeded", "превышена дисковая квота"}},
    {EEXIST, {"File exists", "файл уже существует"}},
    {EFBIG, {"File too large", "файл слишком велик"}},
    {EINVAL, {"Invalid argument", "недопустимый параметр"}},
    {EIO, {"Input/output error", "ошибка ввода-вывода"}},
    {EISDIR, {"Is a directory", "это каталог"}},
    {ELOOP, {"Too many levels of symbolic links", "слишком много ссылок подряд"}},
    {EMFILE, {"Too many open files", "открыто слишком много файлов"}},
    {ENAMETOOLONG, {"File name too long", "слишком длинное имя файла"}},
    {ENFILE, {"Too many open files in system", "в системе открыто слишком много файлов"}},
    {ENODEV, {"No such device", "нет такого устройства"}},
    {ENOENT, {"No such file or directory", "нет такого файла или каталога"}},
    {ENOMEM, {"Cannot allocate memory", "не хватает памяти"}},
    {ENOSPC, {"No space left on device", "на устройстве не осталось места"}},
    {ENOTDIR, {"Not a directory", "это не каталог"}},
    {ENOTSOCK, {"Socket operation on non-socket", "это не сокет"}},
    {ENOTTY, {"Inappropriate ioctl for device", "устройство не поддерживает этого"}},
    {ENXIO, {"No such device or address", "за этим файлом нет устройства"}},
    {EPERM, {"Operation not permitted", "действие не разрешено"}},
    {EPIPE, {"Broken pipe", "канал закрыт"}},
    {EPROTO, {"Protocol error", "ошибка протокола"}},
    {EPROTOTYPE, {"Protocol wrong type for socket", "сокет другого вида"}},
    {EROFS, {"Read-only file system", "файловая система только для чтения"}},
    {ETIMEDOUT, {"Connection timed out", "время ожидания истекло"}},
};

constexpr Text kError = {"error ", "ошибка "};

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
  if (known != std::end(kErrors)) return say(known->text);
  return say(kError) + std::to_string(error);
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
  for (const auto& [error, text] : kErrors) {
    if (loaderText.ends_with(text.english)) return start + say(text);
  }
  return std::string(loaderText);
}

}  // namespace terminal
