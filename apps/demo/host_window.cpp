#include "host_window.hpp"

#include "demo_desk.hpp"
#include "host_app.hpp"

#include "platform/log.hpp"
#include "renderer/application.hpp"
#include "renderer/kit_widget.hpp"
#include "renderer/main_queue_pump.hpp"
#include "renderer/qt_html_measurer.hpp"
#include "renderer/qt_text_measurer.hpp"
#include "uikit/window.hpp"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <QVBoxLayout>

#include <cstdlib>
#include <iostream>
#include <mutex>

namespace belvademo {

namespace {

// The system's log lines, in the pane and on standard error. Lines may come from any thread; they
// reach the pane through Qt's event loop, and none once the pane is closed.
class PaneLogSink final : public platform::LogSink {
public:
    PaneLogSink(QPlainTextEdit* pane, std::shared_ptr<platform::LogSink> next) : pane_(pane), next_(std::move(next)) {}

    void write(platform::LogLevel level, std::string_view message) override {
        if (next_) next_->write(level, message);
        const QString line = QString("[%1] %2").arg(QString::fromUtf8(platform::toString(level).data(),
                                                                       static_cast<int>(platform::toString(level).size())),
                                                    QString::fromUtf8(message.data(), static_cast<int>(message.size())));
        std::lock_guard lock(mutex_);
        if (!pane_) return;
        QPlainTextEdit* pane = pane_;
        QMetaObject::invokeMethod(pane, [pane, line] { pane->appendPlainText(line); }, Qt::QueuedConnection);
    }
    void close() {
        std::lock_guard lock(mutex_);
        pane_ = nullptr;
    }

private:
    std::mutex mutex_;
    QPlainTextEdit* pane_;
    std::shared_ptr<platform::LogSink> next_;
};

void note(const std::string& text) { platform::log::write(platform::LogLevel::info, "demo: " + text); }

// The help desk's switches, and what its agent and the host's pushes do to the ticket chosen.
class DeskPanel final : public QGroupBox {
public:
    DeskPanel(DemoDesk& desk, std::function<void()> changed) : QGroupBox("Help desk"), desk_(desk), changed_(std::move(changed)) {
        auto* form = new QFormLayout(this);

        auto* offline = new QCheckBox("Offline (tickets and Help Center)");
        connect(offline, &QCheckBox::toggled, this, [this](bool on) {
            desk_.setOffline(on);
            note(on ? "the help desk went offline" : "the help desk is back online");
        });
        form->addRow(offline);

        auto* latency = new QSpinBox;
        latency->setRange(0, 10000);
        latency->setSingleStep(250);
        latency->setSuffix(" ms");
        connect(latency, qOverload<int>(&QSpinBox::valueChanged), this, [this](int milliseconds) {
            desk_.setLatency(milliseconds / 1000.0);
        });
        form->addRow("Latency", latency);

        auto* unauthorized = new QCheckBox("Answer HTTP 401");
        connect(unauthorized, &QCheckBox::toggled, this, [this](bool on) {
            desk_.tickets().setUnauthorized(on);
            note(on ? "ticket calls answer 401" : "ticket calls are authorized again");
        });
        form->addRow(unauthorized);

        auto* conversations = new QCheckBox("Conversations on the account");
        conversations->setChecked(true);
        connect(conversations, &QCheckBox::toggled, this, [this](bool on) {
            desk_.helpDesk().settings()->setConversationsEnabled(on);
            desk_.helpDesk().conversationsSettings()->setEnabled(on);
        });
        form->addRow(conversations);

        auto* failTicket = new QPushButton("Fail the next ticket call");
        connect(failTicket, &QPushButton::clicked, this, [this] {
            desk_.tickets().failNext(1);
            note("the next ticket call fails");
        });
        auto* failHelpCenter = new QPushButton("Fail the next Help Center call");
        connect(failHelpCenter, &QPushButton::clicked, this, [this] {
            desk_.helpDesk().helpCenter()->failNext(1);
            note("the next Help Center call fails");
        });
        auto* failures = new QHBoxLayout;
        failures->addWidget(failTicket);
        failures->addWidget(failHelpCenter);
        form->addRow(failures);

        auto* answers = new QCheckBox("The agent answers each message after 3 s");
        answers->setChecked(desk_.agentAnswers());
        connect(answers, &QCheckBox::toggled, this, [this](bool on) { desk_.setAgentAnswers(on); });
        form->addRow(answers);

        tickets_ = new QComboBox;
        tickets_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        tickets_->setMinimumContentsLength(24);
        form->addRow("Ticket", tickets_);

        reply_ = new QLineEdit("We have found the cause and are fixing it.");
        auto* send = new QPushButton("Agent replies");
        connect(send, &QPushButton::clicked, this, [this] { agentReplies(); });
        connect(reply_, &QLineEdit::returnPressed, this, [this] { agentReplies(); });
        auto* replyRow = new QHBoxLayout;
        replyRow->addWidget(reply_);
        replyRow->addWidget(send);
        form->addRow(replyRow);

        auto* article = new QPushButton("Agent links an article");
        connect(article, &QPushButton::clicked, this, [this] {
            const auto ticket = chosenTicket();
            if (ticket && desk_.agentSendsArticle(*ticket, 360028, "Working offline"))
                note("the agent linked an article on ticket " + *ticket);
        });
        form->addRow(article);

        auto* pushTicket = new QPushButton("Push: refresh the ticket");
        connect(pushTicket, &QPushButton::clicked, this, [this] {
            if (const auto ticket = chosenTicket()) DemoDesk::pushRefreshTicket(*ticket);
            changed_();
        });
        auto* pushList = new QPushButton("Push: refresh the list");
        connect(pushList, &QPushButton::clicked, this, [this] {
            DemoDesk::pushRefreshList();
            changed_();
        });
        auto* pushes = new QHBoxLayout;
        pushes->addWidget(pushTicket);
        pushes->addWidget(pushList);
        form->addRow(pushes);

        connect(&refresh_, &QTimer::timeout, this, [this] { refreshTickets(); });
        refresh_.start(500);
        refreshTickets();
    }

private:
    std::optional<std::string> chosenTicket() const {
        const auto id = tickets_->currentData().toString().toStdString();
        if (id.empty()) {
            note("the help desk has no ticket yet");
            return std::nullopt;
        }
        return id;
    }

    void agentReplies() {
        const auto ticket = chosenTicket();
        const auto text = reply_->text().trimmed().toStdString();
        if (!ticket || text.empty()) return;
        if (desk_.agentWrites(*ticket, text)) note("the agent wrote on ticket " + *ticket + "; a push brings it to the app");
    }

    // The desk's tickets, newest first; the one open in the app is chosen when it changes.
    void refreshTickets() {
        const auto requests = desk_.tickets().requests();
        const auto open = DemoDesk::openTicket();
        if (requests.size() != shownCount_) {
            shownCount_ = requests.size();
            const QString chosen = tickets_->currentData().toString();
            tickets_->clear();
            for (auto request = requests.rbegin(); request != requests.rend(); ++request) {
                QString description = QString::fromStdString(request->requestDescription);
                if (description.size() > 40) description = description.left(40) + "...";
                tickets_->addItem(QString("#%1 %2").arg(QString::fromStdString(request->requestId), description),
                                  QString::fromStdString(request->requestId));
            }
            if (const int index = tickets_->findData(chosen); index >= 0) tickets_->setCurrentIndex(index);
        }
        if (open != lastOpen_) {
            lastOpen_ = open;
            if (open)
                if (const int index = tickets_->findData(QString::fromStdString(*open)); index >= 0)
                    tickets_->setCurrentIndex(index);
        }
    }

    DemoDesk& desk_;
    std::function<void()> changed_;
    QComboBox* tickets_ = nullptr;
    QLineEdit* reply_ = nullptr;
    QTimer refresh_;
    std::size_t shownCount_ = static_cast<std::size_t>(-1);
    std::optional<std::string> lastOpen_;
};

} // namespace

int runHostWindow(int& argc, char** argv, const std::optional<std::string>& snapshot) {
    if (!snapshot && !std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY")) {
        std::cerr << "No display: use --tour DIR to walk the app into pictures instead.\n";
        return 1;
    }
    const auto application = renderer::startApplication(argc, argv, snapshot.has_value());
    renderer::installQtTextMeasurer();
    renderer::installQtHTMLMeasurer();

    QWidget main;
    main.setWindowTitle("BelvaKit demo: Orbit Planner on the embedded help desk");
    auto* log = new QPlainTextEdit;
    log->setReadOnly(true);
    log->setMaximumBlockCount(5000);
    log->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    log->setPlaceholderText("The system's log lines show here.");
    log->setMinimumWidth(420);
    auto sink = std::make_shared<PaneLogSink>(log, std::make_shared<platform::StderrLogSink>());
    const auto previousSink = platform::log::setSink(sink);

    int result = 0;
    {
        renderer::MainQueuePump pump;
        DemoDesk desk({});
        desk.setAgentAnswers(true);
        note("the help desk is up at " + desk.accountUrl());

        auto window = std::make_shared<uikit::Window>(uikit::Environment::phonePortrait());
        window->makeKeyAndVisible();
        window->setRootViewController(makeHostApp());
        auto* phone = new renderer::KitWidget(window);
        phone->setFixedSize(phone->sizeHint());
        pump.setDidRunWork([phone] { phone->refresh(); });

        auto* panel = new DeskPanel(desk, [phone] { phone->refresh(); });
        auto* side = new QVBoxLayout;
        side->addWidget(panel);
        side->addWidget(new QLabel("Log"));
        side->addWidget(log, 1);
        auto* layout = new QHBoxLayout(&main);
        layout->addWidget(phone, 0, Qt::AlignTop);
        layout->addLayout(side, 1);
        main.show();

        if (snapshot) {
            QTimer::singleShot(1500, &main, [&main, &result, path = *snapshot] {
                const bool saved = main.grab().save(QString::fromStdString(path), "PNG");
                std::cout << (saved ? "wrote " : "could not write ") << path << "\n";
                result = saved ? 0 : 1;
                QApplication::quit();
            });
        }
        const int code = application ? application->exec() : QApplication::exec();
        if (!snapshot) result = code;
        window->setRootViewController(nullptr);
        sink->close();
        platform::log::setSink(previousSink);
    }
    return result;
}

} // namespace belvademo
