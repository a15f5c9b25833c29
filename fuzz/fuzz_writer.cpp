// SPDX-License-Identifier: GPL-3.0-or-later
// Feeds arbitrary source bytes and random wishes to the image metadata writer: it must answer or
// refuse, never crash, hang or touch memory it does not own; and whatever bytes it hands out
// must read back.
#include "ImageProperties.h"
#include "ImageWriter.h"
#include "PropertyKeys.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>

namespace {

struct Target {
    const char* group;  // nullptr: the top level
    const char* key;
};

// clang-format off
const Target kTargets[] = {
    {kCGImagePropertyExifDictionary, kCGImagePropertyExifDateTimeOriginal},
    {kCGImagePropertyExifDictionary, kCGImagePropertyExifUserComment},
    {kCGImagePropertyExifDictionary, kCGImagePropertyExifLensModel},
    {kCGImagePropertyExifDictionary, kCGImagePropertyExifExposureTime},
    {kCGImagePropertyExifDictionary, kCGImagePropertyExifISOSpeedRatings},
    {kCGImagePropertyExifDictionary, kCGImagePropertyExifVersion},
    {kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFDateTime},
    {kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFArtist},
    {kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFOrientation},
    {kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFCompression},
    {kCGImagePropertyGPSDictionary, kCGImagePropertyGPSLatitude},
    {kCGImagePropertyGPSDictionary, kCGImagePropertyGPSLatitudeRef},
    {kCGImagePropertyGPSDictionary, kCGImagePropertyGPSTimeStamp},
    {kCGImagePropertyGPSDictionary, kCGImagePropertyGPSVersion},
    {kCGImagePropertyIPTCDictionary, kCGImagePropertyIPTCKeywords},
    {kCGImagePropertyIPTCDictionary, kCGImagePropertyIPTCByline},
    {kCGImagePropertyIPTCDictionary, kCGImagePropertyIPTCDateCreated},
    {kCGImagePropertyIPTCDictionary, kCGImagePropertyIPTCCaptionAbstract},
    {kCGImagePropertyIPTCDictionary, kCGImagePropertyIPTCCreatorContactInfo},
    {nullptr, kCGImagePropertyOrientation},
    {nullptr, kCGImagePropertyExifDictionary},
    {nullptr, kCGImagePropertyGPSDictionary},
    {nullptr, kCGImagePropertyIPTCDictionary},
    {nullptr, kCGImagePropertyTIFFDictionary},
};
const char* const kTexts[] = {"", "2020:01:02 03:04:05", "hello wörld", "a, b,,c", "6", "-1e308", "12:30:15.5",
                              "\x02", "N", "charset=Unicode x", "0232"};
// clang-format on

QVariant value(FuzzedDataProvider& fdp) {
    switch (fdp.ConsumeIntegralInRange(0, 6)) {
    case 0: return QVariant::fromValue(nullptr);
    case 1: return QString::fromUtf8(fdp.PickValueInArray(kTexts));
    case 2: return fdp.ConsumeIntegral<qint64>();
    case 3: return fdp.ConsumeFloatingPoint<double>();
    case 4: return QVariantList{fdp.ConsumeIntegralInRange(-3, 300), fdp.ConsumeProbability<double>() * 90,
                                QString::fromUtf8(fdp.PickValueInArray(kTexts))};
    case 5: return QVariantMap{{kCGImagePropertyIPTCContactInfoCity, QString::fromUtf8(fdp.PickValueInArray(kTexts))},
                               {kCGImagePropertyIPTCContactInfoEmails, QVariant::fromValue(nullptr)}};
    default: return QByteArray(fdp.ConsumeIntegralInRange(0, 40), 'x');
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // The wishes come from the end of the input, so the sample images work as seeds as they are.
    FuzzedDataProvider fdp(data, size);
    imageio::PropertyDict changes;
    const int wishes = fdp.ConsumeIntegralInRange(0, 6);
    for (int i = 0; i < wishes; ++i) {
        const Target& t = fdp.PickValueInArray(kTargets);
        const QVariant v = value(fdp);
        if (!t.group) {
            changes.insert(t.key, v);
        } else {
            QVariantMap group = changes.value(t.group).toMap();
            group.insert(t.key, v);
            changes.insert(t.group, group);
        }
    }
    const std::vector<uint8_t> rest = fdp.ConsumeRemainingBytes<uint8_t>();
    const QByteArray source(reinterpret_cast<const char*>(rest.data()), qsizetype(rest.size()));
    QString error;
    if (const auto written = imageio::writeProperties(source, changes, &error)) {
        if (!imageio::readProperties(*written, &error)) std::abort();
    }
    return 0;
}
