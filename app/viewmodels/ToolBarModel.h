#pragma once
// (placeholder: filled in by the screen's own change)
#include <QObject>

class ToolBarModel : public QObject {
    Q_OBJECT
public:
    explicit ToolBarModel(QObject* parent = nullptr);
};
