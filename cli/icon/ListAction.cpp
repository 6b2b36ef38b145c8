#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/JsonWriter.h"
#include "cli/Options.h"
#include "cli/Paths.h"
#include "cli/Results.h"
#include "cli/TextTable.h"
#include "cli/icon/IconActions.h"
#include "cli/icon/ImageOutput.h"
#include "cli/icon/LibraryMessages.h"
#include "encap/foundation/NumberText.h"

#include <algorithm>

namespace encap::cli {
namespace {

enum Format : int { kText, kJson };

class ListAction : public Command {
public:
    void Declare(Options& options) override;
    ExitStatus Run(Console& console) override;

private:
    CString m_path;
    int m_format = kText;
    CString m_output;
};

/// One image of the list.
struct ListedImage {
    uint32_t number = 0; ///< the first being 1
    const ICONIMAGE* image = nullptr;
    bool isPng = false;
    bool isWhole = true;
};

struct ListedIcon {
    CString name;
    bool isDamaged = false; ///< as a whole: it has no images
    std::vector<ListedImage> images;
};

/// Pixels that are decoded to see whether images are whole, of one file.
constexpr uint64_t kMostChecked = uint64_t{16} << 20;

/// PNG images of more are not decoded at all.
constexpr uint64_t kMostPngPixels = uint64_t{4} << 20;

/// Pixels that are decoded to see whether the image is whole: none of one that is seen at once to
/// claim more than its bytes can hold, or too many.
uint64_t PixelsToCheck(const ICONIMAGE& image, bool isPng)
{
    constexpr uint64_t kMostPixelsPerByte = 8;
    const uint64_t pixels = PixelCount(image);
    const uint64_t most = isPng ? kMostPngPixels : image.byteCount * kMostPixelsPerByte;
    return pixels <= most ? pixels : 0;
}

std::vector<ListedIcon> ListIcons(const IconSource& source)
{
    uint64_t pixelsLeft = kMostChecked;
    std::vector<ListedIcon> icons;
    for (const NamedIconResource& named : source.Icons()) {
        ListedIcon& icon = icons.emplace_back();
        icon.name = named.name;
        icon.isDamaged = named.icon == nullptr;
        if (icon.isDamaged) {
            continue;
        }
        for (const ICONIMAGE* image : ImagesOf(*named.icon)) {
            ListedImage& listed = icon.images.emplace_back();
            listed.number = static_cast<uint32_t>(icon.images.size());
            listed.image = image;
            listed.isPng = IsPngImage(*image);
            const uint64_t pixels = PixelsToCheck(*image, listed.isPng);
            if (pixels <= pixelsLeft) {
                pixelsLeft -= pixels;
                listed.isWhole = IsWholeImage(*image);
            }
        }
    }
    return icons;
}

/// How many colours the pixels can have where it is a matter of a table; 0 above 8 bits.
int64_t ColoursOf(const ICONIMAGE& image)
{
    return image.colours >= 1 && image.colours <= 8 ? int64_t{1} << image.colours : 0;
}

const wchar_t* KindName(SourceKind kind)
{
    switch (kind) {
    case SourceKind::Bmp: return L"bmp";
    case SourceKind::Png: return L"png";
    case SourceKind::Executable: return L"executable";
    default: return L"ico";
    }
}

void PrintText(const IconSource& source, const std::vector<ListedIcon>& icons, Results& results)
{
    using enum TextTable::Alignment;
    const bool hasNames = source.Kind() == SourceKind::Executable;
    TextTable table;
    if (hasNames) {
        table.AddColumn(Left, {L"Icon"});
    }
    for (const wchar_t* heading : {L"Image", L"Width", L"Height", L"Bits", L"Colours", L"Bytes"}) {
        table.AddColumn(Right, {heading});
    }
    table.AddColumn(Left, {L"Form"});
    for (const ListedIcon& icon : icons) {
        for (const ListedImage& listed : icon.images) {
            const ICONIMAGE& image = *listed.image;
            const int64_t colours = ColoursOf(image);
            if (hasNames) {
                table.AddCell(icon.name);
            }
            for (const uint32_t number :
                 {listed.number, image.width, image.height, image.colours}) {
                table.AddCell(FormatInteger(number));
            }
            table.AddCell(colours != 0 ? FormatInteger(colours) : L"");
            table.AddCell(FormatInteger(image.byteCount));
            table.AddCell(CString(listed.isPng ? L"PNG" : L"BMP") +
                          (listed.isWhole ? L"" : L", damaged"));
        }
    }
    table.Print(results);
}

void PrintImageJson(const ListedImage& listed, JsonWriter& json)
{
    const ICONIMAGE& image = *listed.image;
    json.BreakLine(3);
    json.BeginObject();
    json.MemberNumber(L"image", listed.number);
    json.MemberNumber(L"width", image.width);
    json.MemberNumber(L"height", image.height);
    json.MemberNumber(L"bits", image.colours);
    json.Key(L"colours");
    if (const int64_t colours = ColoursOf(image); colours != 0) {
        json.Number(colours);
    } else {
        json.Null();
    }
    json.MemberNumber(L"bytes", image.byteCount);
    json.Member(L"form", listed.isPng ? L"png" : L"bmp");
    json.MemberBool(L"damaged", !listed.isWhole);
    json.EndObject();
}

void PrintJson(const IconSource& source, const std::vector<ListedIcon>& icons, Results& results)
{
    JsonWriter json(results.Text());
    json.BeginObject();
    json.Member(L"file", source.Path());
    json.Member(L"kind", KindName(source.Kind()));
    json.BreakLine(1);
    json.Key(L"icons");
    json.BeginArray();
    for (const ListedIcon& icon : icons) {
        json.BreakLine(2);
        json.BeginObject();
        json.Key(L"name");
        if (source.Kind() == SourceKind::Executable) {
            json.Text(icon.name);
        } else {
            json.Null();
        }
        json.MemberBool(L"damaged", icon.isDamaged);
        json.Key(L"images");
        json.BeginArray();
        for (const ListedImage& listed : icon.images) {
            PrintImageJson(listed, json);
        }
        json.EndArray();
        json.EndObject();
        results.Pass();
    }
    json.EndArray();
    json.EndObject();
    results.Text() += '\n';
}

/// A line for each icon and image that is damaged; whether there is any.
bool TellDamage(const IconSource& source, const std::vector<ListedIcon>& icons, Console& console)
{
    bool isAny = false;
    for (const ListedIcon& icon : icons) {
        const CString place = source.Path() + (icon.name.empty() ? L"" : L": icon " + icon.name);
        if (icon.isDamaged) {
            console.Message(place + L" is damaged");
            isAny = true;
        }
        for (const ListedImage& listed : icon.images) {
            if (!listed.isWhole) {
                console.Message(place + L": image " + FormatInteger(listed.number) +
                                L" is damaged, or has too many pixels");
                isAny = true;
            }
        }
    }
    return isAny;
}

void ListAction::Declare(Options& options)
{
    options.Argument(m_path, "FILE", "An ICO, BMP or PNG file, or an executable or library");
    options.Choice(m_format, "--format", {"text", "json"}, "What to print (default: text)");
    options.Text(m_output, "-o,--output", "FILE", "Write to this file instead of standard output");
    options.Footer("Damaged images are marked and told on standard error; the exit status is "
                   "then 1.");
}

ExitStatus ListAction::Run(Console& console)
{
    LibraryMessages messages(console);
    const IconSource source(m_path, messages);
    RequireNotRead(m_output, m_path);
    const std::vector<ListedIcon> icons = ListIcons(source);
    Results results(console, m_output);
    if (m_format == kJson) {
        PrintJson(source, icons, results);
    } else {
        PrintText(source, icons, results);
    }
    results.Finish();
    return TellDamage(source, icons, console) ? ExitStatus::Findings : ExitStatus::Done;
}

} // namespace

std::unique_ptr<Command> MakeIconListAction()
{
    return std::make_unique<ListAction>();
}

} // namespace encap::cli
