// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The offline geocoder: the place data of places.bin, looked up by position (the nearest
// populated place) and by name. Read-only once loaded, so one index serves every thread.
#include "GeoLocation.h"
#include "PlacesFormat.h"

#include <QFile>
#include <QList>
#include <QLocale>
#include <QString>
#include <memory>
#include <optional>
#include <vector>

struct PlaceMatch {
    Placemark placemark;  // locality, administrative area, country and its code
    GeoCoordinate coordinate;
    quint32 population = 0;  // 0: not known
};

class PlaceIndex {
public:
    // Farther than this from every known place a position gets no placemark at all, so that a
    // photo taken at sea is not named after a town on a distant coast. In the data, half of
    // all places have a neighbour within 4.4 km, 99% within 62 km and 99.8% within 120 km, so
    // a spot between two towns is at most 60 km from the nearer one almost everywhere people
    // live (the outback, the Sahara and the taiga included); a name farther off than that
    // misleads more than it helps. The open ocean is hundreds of kilometres from any town.
    static constexpr double maxDistance = 60'000;  // metres
    // Places within nearFactor times the nearest distance plus nearSlack count as about as
    // near; the most populous of them is chosen.
    static constexpr double nearFactor = 1.5;
    static constexpr double nearSlack = 500;  // metres

    // Reads and checks the file; nothing on failure, with the reason in `error`.
    static std::shared_ptr<const PlaceIndex> load(const QString& path, QString* error = nullptr);
    // $TESSORIN_PLACES if set, else share/tessorin/places.bin beside the program's folder
    // (build/bin -> build/share), else the installed copy.
    static QString defaultPath();
    // The index of defaultPath(), loaded once on first use by whichever thread asks first;
    // nothing if it can't be read (the reason is logged).
    static std::shared_ptr<const PlaceIndex> shared();

    // The place at or near a position: locality, sub-locality for a district, administrative
    // area, country (in the language of `locale` where the data has it) and ISO code. Nothing
    // beyond maxDistance.
    std::optional<Placemark> reverse(const GeoCoordinate& coordinate, const QLocale& locale = QLocale()) const;

    // Places whose name matches the text, best first: whole name before start of name before
    // anywhere in the name, larger population first within each, then by name. Case, accents
    // and punctuation are ignored. Text after a comma narrows by country code, country name
    // or administrative area: "Paris, US", "Rome, Georgia".
    QList<PlaceMatch> search(const QString& text, int limit = 10, const QLocale& locale = QLocale()) const;

    // Every town (not a district) of at least this many people, most populous first: the
    // labelled dots of the offline map.
    struct Town {
        GeoCoordinate coordinate;
        QString name;
        quint32 population;
    };
    std::vector<Town> towns(quint32 minPopulation) const;

    // The nearest place whatever its distance, and that distance in metres: for measuring.
    std::pair<qsizetype, double> nearest(const GeoCoordinate& coordinate) const;
    qsizetype size() const { return qsizetype(header_.placeCount); }
    // Bytes held for the data.
    qsizetype memoryBytes() const { return qsizetype(storage_.size() * sizeof(quint32)); }

    PlaceIndex(const PlaceIndex&) = delete;
    PlaceIndex& operator=(const PlaceIndex&) = delete;

private:
    PlaceIndex() = default;
    bool check(QString* error);
    const places::Place& place(qsizetype i) const { return places_[i]; }
    const char* text(quint32 offset) const { return strings_ + offset; }
    QString string(quint32 offset) const { return offset ? QString::fromUtf8(text(offset)) : QString(); }
    QString countryName(quint16 country, const QLocale& locale) const;
    const quint32* translations(const QLocale& locale) const;
    Placemark placemarkAt(qsizetype i, const QLocale& locale) const;
    template <typename Accept>
    void nearestIn(qsizetype lo, qsizetype hi, const float q[3], const Accept& accept, qsizetype& best, float& bestD2) const;
    template <typename Visit>
    void within(qsizetype lo, qsizetype hi, const float q[3], float maxD2, const Visit& visit) const;

    std::vector<quint32> storage_;  // the file, in words so that its tables are aligned
    places::Header header_{};
    const places::Place* places_ = nullptr;
    const places::Country* countries_ = nullptr;
    const places::Admin* admins_ = nullptr;
    const places::Language* languages_ = nullptr;
    const quint32* translations_ = nullptr;
    const char* strings_ = nullptr;
};
