// quorvel-scanner: a scanner in a terminal.

#include "tools/scanner/Commands.h"

namespace {

using namespace terminal;

constexpr char kName[] = "quorvel-scanner";

constexpr Text kHelp = {
    R"(quorvel-scanner - play a barcode scanner or card reader

usage: quorvel-scanner KIND [OPTION...] [TEXT...]
       quorvel-scanner help KIND

Scans the texts, or the lines of a file or of standard input, one after another.

kinds:
  serial    a scanner on a serial port; stays plugged in until Ctrl-C
  keyboard  a scanner that types, as on a US keyboard

options:
  --file FILE       one scan a line; - is standard input
  --escapes         \xHH, \r, \n, \t and \\ in a text stand for bytes
  --suffix CODES    the bytes that end a scan, such as 13 (default) or 13,10
  --rate N          scans a second (default 2)
  --byte-delay MS   a pause after each byte: 1.04 is 9600 baud
  --burst N         N scans at a time, in one write
  -h, --help        show this text, or that of a kind
  --version         show the version

exit code: 0 done, 1 failed, 2 the command line is wrong
)",
    R"(quorvel-scanner - изобразить сканер штрихкода или считыватель карт

запуск: quorvel-scanner ВИД [КЛЮЧ...] [ТЕКСТ...]
        quorvel-scanner help ВИД

Сканирует тексты либо строки файла или стандартного ввода, один за другим.

виды:
  serial    сканер на последовательном порту; остаётся подключённым до Ctrl-C
  keyboard  сканер-клавиатура с раскладкой США

ключи:
  --file ФАЙЛ       один скан в строке; - это стандартный ввод
  --escapes         \xHH, \r, \n, \t и \\ в тексте означают байты
  --suffix КОДЫ     байты конца скана, например 13 (по умолчанию) или 13,10
  --rate N          сканов в секунду (по умолчанию 2)
  --byte-delay МС   пауза после каждого байта: 1.04 — это 9600 бод
  --burst N         по N сканов сразу, одной записью
  -h, --help        показать эту справку или справку о виде
  --version         показать версию

код выхода: 0 — выполнено, 1 — ошибка, 2 — неверная командная строка
)"};

constexpr Text kSerialHelp = {
    R"(usage: quorvel-scanner serial --link PATH [OPTION...] [TEXT...]

A scanner on a serial port; stays plugged in until Ctrl-C.

options, besides those of quorvel-scanner --help:
  --link PATH     where the port stands, such as /dev/ttyUSB0
  --line SETTING  framed (default): a scan is handed over whole;
                  raw: bytes come as they come;
                  cooked: as a fresh terminal, for suffix 10
  --no-wait       scan without waiting for a reader
)",
    R"(запуск: quorvel-scanner serial --link ПУТЬ [КЛЮЧ...] [ТЕКСТ...]

Сканер на последовательном порту; остаётся подключённым до Ctrl-C.

ключи, помимо тех, что показывает quorvel-scanner --help:
  --link ПУТЬ     где стоит порт, например /dev/ttyUSB0
  --line РЕЖИМ    framed (по умолчанию): скан передаётся целиком;
                  raw: байты приходят как есть;
                  cooked: как новый терминал, для суффикса 10
  --no-wait       сканировать, не дожидаясь читателя
)"};

constexpr Text kKeyboardHelp = {
    R"(usage: quorvel-scanner keyboard [--socket PATH] [OPTION...] [TEXT...]

A scanner that types, as on a US keyboard, into whatever has the focus.

options, besides those of quorvel-scanner --help:
  --socket PATH  type on a keyboard of an X server's inputtest driver instead
)",
    R"(запуск: quorvel-scanner keyboard [--socket ПУТЬ] [КЛЮЧ...] [ТЕКСТ...]

Сканер-клавиатура с раскладкой США; печатает туда, где фокус ввода.

ключи, помимо тех, что показывает quorvel-scanner --help:
  --socket ПУТЬ  печатать на клавиатуре драйвера inputtest X-сервера
)"};

int run(const Arguments& words) {
  const ProgramDescription program = {
      kName,
      kHelp,
      {},
      {{"serial", kSerialHelp, runSerialScanner}, {"keyboard", kKeyboardHelp, runKeyboardScanner}}};
  return runCommand(program, words);
}

}  // namespace

int main(int argc, char** argv) {
  return runProgram(kName, [&] { return run(Arguments(argv + 1, argv + argc)); });
}
