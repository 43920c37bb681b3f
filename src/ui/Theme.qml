pragma Singleton
import QtQuick
import Brindle

// Every colour, font size and spacing of the screens by its name. One point is one logical pixel.
QtObject {
    readonly property bool isDark: Scheme.isDark

    // Colours of text and symbols: at least 4.5 : 1 on every background below.
    readonly property color primary: isDark ? "#F3F3F5" : "#1C1D20"
    readonly property color secondary: isDark ? "#B4B6BE" : "#575962"
    readonly property color white: "#FFFFFF"
    readonly property color black: "#000000"
    readonly property color gray: isDark ? "#B0B2BA" : "#5F6169"
    readonly property color blue: isDark ? "#7AB6FF" : "#0A58BC"
    readonly property color purple: isDark ? "#D3A4F8" : "#7631B2"
    readonly property color green: isDark ? "#63D07E" : "#166A36"
    readonly property color orange: isDark ? "#FFB45E" : "#8F4C00"
    readonly property color red: isDark ? "#FF918A" : "#B81F1C"

    // Backgrounds.
    readonly property color window: isDark ? "#1E1F22" : "#F4F4F6"
    readonly property color row: isDark ? "#292A2E" : "#FFFFFF"
    readonly property color rowHover: isDark ? "#303238" : "#EDF2FA"
    readonly property color rowSelected: isDark ? "#2B3648" : "#E1EBFA"
    readonly property color field: isDark ? "#161719" : "#FFFFFF"
    readonly property color control: isDark ? "#3A3C41" : "#FFFFFF"
    readonly property color controlHover: isDark ? "#404248" : "#EEF0F4"
    readonly property color controlPressed: isDark ? "#303237" : "#E0E2E8"
    readonly property color warningBox: isDark ? "#35291A" : "#FFF5E6"
    readonly property color dangerBox: isDark ? "#3A2220" : "#FDEEED"

    // Filled buttons; their text is onFilled.
    readonly property color accent: isDark ? "#1F6BDF" : "#0B63CE"
    readonly property color accentHover: isDark ? "#1A61CE" : "#0A58B8"
    readonly property color accentPressed: isDark ? "#1655B6" : "#084A9A"
    readonly property color destructive: isDark ? "#CE322C" : "#C5221F"
    readonly property color destructiveHover: isDark ? "#BC2B26" : "#B01D1A"
    readonly property color destructivePressed: isDark ? "#A62520" : "#991815"
    readonly property color onFilled: "#FFFFFF"

    // Lines.
    readonly property color separator: isDark ? "#3E4046" : "#D6D7DD"
    readonly property color controlBorder: isDark ? "#5A5C64" : "#B9BBC3"
    readonly property color fieldBorder: isDark ? "#8D8F98" : "#84868E"
    readonly property color focus: isDark ? "#7AB6FF" : "#0B63CE"

    // Fonts: one family, where the desktop has another for its own buttons too.
    readonly property string fontFamily: Qt.application.font.family
    readonly property int largeTitle: 26
    readonly property int title2: 17
    readonly property int title3: 15
    readonly property int headline: 13
    readonly property int body: 13
    readonly property int callout: 12
    readonly property int subheadline: 11
    readonly property int caption: 10

    // Spacings.
    readonly property int margin: 16
    readonly property int listMargin: 8
    readonly property int spacing: 8
    readonly property int tight: 4
    readonly property int radius: 6
    readonly property int windowRadius: 10
    readonly property int windowWidth: 500
    readonly property int disabledPercent: 45

    // A presenter's colour: the name of one of the above, or a fixed "#RRGGBB".
    function color(value: string): color {
        return value.startsWith("#") ? value : value === "" ? "transparent" : this[value];
    }

    // A presenter's font weight.
    function weight(value: string): int {
        return value === "bold" ? Font.Bold : value === "medium" ? Font.Medium : Font.Normal;
    }
}
