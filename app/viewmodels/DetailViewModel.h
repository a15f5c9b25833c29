#pragma once
// (placeholder: filled in by the screen's own change)
#include <QObject>

class DetailViewModel : public QObject {
    Q_OBJECT
public:
    explicit DetailViewModel(QObject* parent = nullptr);
};
