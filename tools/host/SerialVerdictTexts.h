// Why a scan from a serial port is not delivered, or not as it was sent.
#pragma once

#include "tools/host/Findings.h"

namespace terminal {

inline constexpr FindingText kNoBytes = {
    "no-bytes",
    {"nothing came from {file}", "с {file} ничего не пришло"},
    {"check that the scanner beeps, that it is in serial (not keyboard) mode, its cable, and that "
     "it is this port: quorvel-host test shows all ports at once",
     "проверьте, что сканер пищит, что он в режиме последовательного порта (а не клавиатуры), "
     "кабель и тот ли это порт: quorvel-host test показывает все порты сразу"}};
inline constexpr FindingText kOnlyAnEnd = {
    "no-bytes",
    {"only the end of a scan came from {file}, {bytes}, and nothing before it",
     "с {file} пришёл только конец скана, {bytes}, а перед ним ничего"},
    {"scan a barcode that is not empty, and look at the scanner's own prefix and suffix settings",
     "просканируйте непустой код и проверьте настройки префикса и суффикса самого сканера"}};
inline constexpr FindingText kUnplugged = {
    "unplugged",
    {"{file} was unplugged meanwhile", "{file} тем временем отключили"},
    {"plug it in again, and look at the cable and at the hub's power",
     "подключите его снова, проверьте кабель и питание концентратора"}};
inline constexpr FindingText kNoEnd = {
    "no-end",
    {"the scan {bytes} does not contain its end, the character {suffix}",
     "в скане {bytes} нет его конца, символа {suffix}"},
    {"--set Suffix={end}", "--set Suffix={end}"}};
inline constexpr FindingText kPieces = {
    "line-raw",
    {"the scan came in {count} pieces on a raw line, and the driver drops an unfinished one",
     "скан пришёл по частям ({count}) по линии без сборки (raw), а незаконченную часть драйвер "
     "отбрасывает"},
    {"{command}", "{command}"}};
inline constexpr FindingText kOtherEnd = {
    "line-framed-other-end",
    {"the line is framed by the character {frame}, but the scan {bytes} ends in {end}: the line "
     "never hands it over",
     "линия собирает скан до символа {frame}, но скан {bytes} заканчивается на {end}: линия его не "
     "передаёт"},
    {"set the scanner to end each scan with carriage return (13)",
     "настройте сканер заканчивать каждый скан возвратом каретки (13)"}};
inline constexpr FindingText kOtherSuffix = {
    "line-framed-other-end",
    {"the framed line hands over the scan {bytes}, but with the suffix {suffix} the driver waits "
     "for another end",
     "линия передаёт скан {bytes}, но с суффиксом {suffix} драйвер ждёт другого конца"},
    {"--set Suffix={end}", "--set Suffix={end}"}};
inline constexpr FindingText kCookedAway = {
    "line-cooked",
    {"the line {file} is cooked, as a terminal's: of the scan {bytes} it makes {seen}",
     "линия {file} в режиме терминала (cooked): из скана {bytes} она делает {seen}"},
    {"{command}", "{command}"}};
inline constexpr FindingText kCookedEnd = {
    "line-cooked",
    {"the line {file} is cooked, as a terminal's: it ends the scan {bytes} with a line feed, not "
     "with the character {suffix}",
     "линия {file} в режиме терминала (cooked): скан {bytes} в ней заканчивается переводом строки, "
     "а не символом {suffix}"},
    {"{command}; or --set Suffix=10", "{command}; либо --set Suffix=10"}};
inline constexpr FindingText kCut = {
    "cut",
    {"the scan has {count} bytes, and the line keeps 4095 at most: the end is lost",
     "в скане {count} байтов, а линия хранит не больше 4095: конец теряется"},
    {"use a raw line: stty -F {file} raw", "сделайте линию raw: stty -F {file} raw"}};
inline constexpr FindingText kNotUtf8 = {
    "not-utf8",
    {"the scan {bytes} is not UTF-8, and bytes of it would be lost in a text",
     "скан {bytes} не в UTF-8, и часть его байтов в тексте пропала бы"},
    {"--set OutputDataType=2 for base64; or set the scanner to UTF-8, and check its speed",
     "--set OutputDataType=2 для base64; либо настройте сканер на UTF-8 и проверьте скорость"}};

}  // namespace terminal
