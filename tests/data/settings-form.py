#!/usr/bin/env python3
"""Writes settings-form.en.xml and settings-form.ru.xml beside itself.

They are the settings form that the driver is expected to give, with marks where the machine's
serial ports and keyboards come. Nothing here is shared with the driver: the tests compare the two
byte for byte.
"""

from pathlib import Path
from string import Template

CAPTIONS = {
    "en": dict(
        page="Parameters", connection="Connection parameters", port="Port", keyboard="Keyboard",
        hid="HID device", speed="Speed", device="Device parameters", suffix="Suffix",
        timeout="COM-port Timeout (ms)", encoding="COM port encoding",
        encoding_hint="Encoding for symbols from COM port", gs="Symbol GS",
        gs_hint="For scanners in keyboard mode. This settings must match key, which scanner sends"
                " for symbol GS(29. 0x1D)",
        output="Output data type", string="String"),
    "ru": dict(
        page="Параметры", connection="Параметры подключения", port="Порт", keyboard="Клавиатура",
        hid="HID устройство", speed="Скорость", device="Параметры устройства", suffix="Суффикс",
        timeout="Таймаут COM-порта (мс)", encoding="Кодировка COM-порта",
        encoding_hint="Кодировка символов из COM-порта", gs="Символ GS",
        gs_hint="Для сканеров в клавиатурном режиме. Данная настройка должна соответствовать"
                " клавише, нажатие которой эмулирует сканер при появлении в считанном штрихкода"
                " символа GS(29, 0x1D).",
        output="Тип выходных данных", string="Строка"),
}

# Indented for reading; the document has nothing between its elements.
FORM = """\
<?xml version="1.0" encoding="UTF-8" ?>
<Settings>
<Page Caption="$page">
<Group Caption="$connection">
<Parameter Name="Port" Caption="$port" TypeValue="Number" DefaultValue="0">
<ChoiceList><Item Value="0">$keyboard</Item>$ports</ChoiceList>
</Parameter>
<Parameter Name="KeyboardDevice" Caption="$hid" TypeValue="String" DefaultValue=""\
 MasterParameterName="Port" MasterParameterOperation="Equal" MasterParameterValue="0">
<ChoiceList>$keyboards</ChoiceList>
</Parameter>
<Parameter Name="Speed" Caption="$speed" TypeValue="Number" DefaultValue="9600"\
 MasterParameterOperation="NotEqual" MasterParameterName="Port" MasterParameterValue="0">
<ChoiceList>$speeds</ChoiceList>
</Parameter>
</Group>
<Group Caption="$device">
<Parameter Name="Suffix" Caption="$suffix" TypeValue="Number" DefaultValue="13">
<ChoiceList><Item Value="-1">&lt;NONE&gt;</Item>$symbols</ChoiceList>
</Parameter>
<Parameter Name="TimeoutCOM" Caption="$timeout" TypeValue="Number" DefaultValue="5"\
 MasterParameterOperation="NotEqual" MasterParameterName="Port" MasterParameterValue="0" />
<Parameter Name="COMEncoding" Caption="$encoding" Description="$encoding_hint"\
 TypeValue="String" DefaultValue="UTF-8"\
 MasterParameterOperation="NotEqual" MasterParameterName="Port" MasterParameterValue="0">
<ChoiceList>
<Item Value="UTF-8">UTF-8</Item>
<Item Value="Windows-1251">Windows-1251</Item>
</ChoiceList>
</Parameter>
<Parameter Name="GSSymbolKey" Caption="$gs" Description="$gs_hint"\
 TypeValue="Number" DefaultValue="-1"\
 MasterParameterOperation="Equal" MasterParameterName="Port" MasterParameterValue="0">
<ChoiceList>$keys</ChoiceList>
</Parameter>
<Parameter Name="OutputDataType" Caption="$output" TypeValue="Number" DefaultValue="0">
<ChoiceList><Item Value="0">$string</Item><Item Value="2">Base64</Item></ChoiceList>
</Parameter>
</Group>
</Page>
</Settings>
"""

SPEEDS = "110 300 600 1200 2400 4800 9600 19200 38400 57600 115200".split()

CONTROL_NAMES = ("NUL SOH STX ETX EOT ENQ ACK BEL BS TAB LF VT FF CR SO SI DLE DC1 DC2 DC3 DC4 NAK"
                 " SYN ETB CAN EM SUB ESC FS GS RS US SPACE").split()

KEYS = ("&lt;NONE&gt; F1 F2 F3 F4 F5 F6 F7 F8 F9 F10 F11 F12 INSERT DELETE HOME END PgUp PgDn"
        " CAPSLOCK RIGHT_ALT NUMPAD_ENTER").split()


def items(pairs):
    return "".join(f'<Item Value="{value}">{text}</Item>' for value, text in pairs)


def symbol_label(code):
    if code < len(CONTROL_NAMES):
        return CONTROL_NAMES[code]
    return "DEL" if code == 127 else "&#" + hex(code)[1:] + ";"


def form(captions):
    return Template(FORM.replace("\n", "")).substitute(
        captions,
        ports="@PORTS@",
        keyboards="@KEYBOARDS@",
        speeds=items((speed, speed) for speed in SPEEDS),
        symbols=items((code, f"{code} ({symbol_label(code)})") for code in range(128)),
        keys=items((key - 1, name) for key, name in enumerate(KEYS)))


for language, captions in CAPTIONS.items():
    Path(__file__).with_name(f"settings-form.{language}.xml").write_text(form(captions), "utf-8")
