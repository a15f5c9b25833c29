#pragma once
// (placeholder: filled in by the screen's own change)
#include <QObject>

class ShareViewModel : public QObject {
    Q_OBJECT
public:
    explicit ShareViewModel(QObject* parent = nullptr);
};
