#include "AppController.h"

AppController::AppController(QObject* parent) : QObject(parent) {}
