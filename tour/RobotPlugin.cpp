#include <sys/socket.h>
#include <sys/un.h>

#include <QFile>
#include <QGenericPlugin>
#include <algorithm>

#include "Robot.h"

/// Puts the robot into an unmodified program: the toolkit loads it when the environment says
/// QT_QPA_GENERIC_PLUGINS=pulsemodrobot:<path of a listening socket>.
class RobotPlugin : public QGenericPlugin {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "RobotPlugin.json")

 public:
  QObject* create(const QString& /*name*/, const QString& socketPath) override {
    const QByteArray path = QFile::encodeName(socketPath);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= static_cast<qsizetype>(sizeof address.sun_path)) return nullptr;
    std::copy(path.begin(), path.end(), address.sun_path);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
      qFatal("The robot cannot reach its script at %s", path.constData());
    }
    return new robot::Robot(socket);
  }
};

#include "RobotPlugin.moc"
