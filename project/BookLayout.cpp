#include "project/BookLayout.h"

#include <algorithm>
#include <cmath>

namespace BookLayout {

namespace {

int16_t narrow(int64_t value) { return int16_t(std::clamp<int64_t>(value, INT16_MIN, INT16_MAX)); }

// The sheet's grid for a count of pictures: columns by rows.
void gridOf(int32_t perSheet, bool wide, int32_t& columns, int32_t& rows)
{
    switch (perSheet) {
    case 1:
        columns = rows = 1;
        break;
    case 2:
        columns = wide ? 2 : 1;
        rows = wide ? 1 : 2;
        break;
    case 9:
        columns = rows = 3;
        break;
    default:
        columns = rows = 2;
        break;
    }
}

// The gaps around a cell: none for one picture, then a twentieth, a
// fortieth and a sixtieth of the sheet.
int32_t gapDivisor(int32_t perSheet)
{
    switch (perSheet) {
    case 2:
        return 20;
    case 4:
        return 40;
    case 9:
        return 60;
    default:
        return 0;
    }
}

} // namespace

KGraphicRectangle fitInto(const KGraphicSize& picture, const KGraphicRectangle& area)
{
    if (picture.width <= 0 || picture.height <= 0 || area.width <= 0 || area.height <= 0)
        return KGraphicRectangle(area.x, area.y, 0, 0);
    double scale = std::min(double(area.width) / picture.width, double(area.height) / picture.height);
    int32_t width = std::clamp(int32_t(std::lround(picture.width * scale)), 1, int32_t(area.width));
    int32_t height = std::clamp(int32_t(std::lround(picture.height * scale)), 1, int32_t(area.height));
    return KGraphicRectangle(narrow(area.x + (area.width - width) / 2), narrow(area.y + (area.height - height) / 2),
                             narrow(width), narrow(height));
}

KGraphicRectangle onePage(const KGraphicRectangle& printable, int32_t footerHeight, const KGraphicSize& page)
{
    KGraphicRectangle above(printable.x, printable.y, printable.width,
                            narrow(std::max<int32_t>(printable.height - footerHeight, 0)));
    return fitInto(page, above);
}

KGraphicRectangle footer(const KGraphicRectangle& printable, int32_t footerHeight)
{
    int32_t height = std::min<int32_t>(footerHeight, printable.height);
    return KGraphicRectangle(printable.x, narrow(printable.y + printable.height - height), printable.width,
                             narrow(height));
}

int32_t validPerSheet(int32_t perSheet)
{
    return perSheet == 1 || perSheet == 2 || perSheet == 4 || perSheet == 9 ? perSheet : 4;
}

int32_t sheetCount(int32_t pictures, int32_t perSheet)
{
    if (pictures <= 0)
        return 0;
    return (pictures - 1) / validPerSheet(perSheet) + 1;
}

KGraphicRectangle cell(const KGraphicRectangle& printable, int32_t footerHeight, int32_t perSheet, int32_t picture)
{
    perSheet = validPerSheet(perSheet);
    int32_t width = printable.width;
    int32_t height = std::max<int32_t>(printable.height - footerHeight, 0);
    int32_t columns, rows;
    gridOf(perSheet, width > height, columns, rows);
    int32_t divisor = gapDivisor(perSheet);
    int32_t gapX = divisor ? width / divisor : 0;
    int32_t gapY = divisor ? height / divisor : 0;
    int32_t slot = (std::max(picture, 1) - 1) % perSheet;
    int32_t column = slot % columns, row = slot / columns;
    int32_t cellWidth = std::max(width / columns - 2 * gapX, 0);
    int32_t cellHeight = std::max(height / rows - 2 * gapY, 0);
    return KGraphicRectangle(narrow(printable.x + column * (width / columns) + gapX),
                             narrow(printable.y + row * (height / rows) + gapY), narrow(cellWidth), narrow(cellHeight));
}

} // namespace BookLayout
