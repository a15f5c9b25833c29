#pragma once
// (placeholder: filled in by the screen's own change)
#include <QObject>

class AppController : public QObject {
    Q_OBJECT
public:
    explicit AppController(QObject* parent = nullptr);
};
