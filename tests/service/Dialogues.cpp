// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/SubtitleFiles.h"

#include <QHash>

namespace murvo::service::test {

namespace {

const QHash<QString, QStringList> &conversations() {
    static const QHash<QString, QStringList> texts{
        {QStringLiteral("en"),
         {QStringLiteral("Good evening. Is this seat taken?"), QStringLiteral("- Please.|- Thank you."),
          QStringLiteral("_I had never seen the harbour|so quiet._"),
          QStringLiteral("You're late, and it's raining."),
          QStringLiteral("What did the _captain_ say to you?"),
          QStringLiteral("He said: \"Wait for the tide.\""),
          QStringLiteral("♪ Over the hills and far away ♪"),
          QStringLiteral("Nobody leaves before the storm is over."),
          QStringLiteral("I'd rather stay here than walk home alone."),
          QStringLiteral("Then we'll need more coffee.")}},
        {QStringLiteral("fr"),
         {QStringLiteral("Où étiez-vous passé, mon garçon ?"),
          QStringLiteral("- Tu viens ?|- J'arrive tout de suite."),
          QStringLiteral("_La mer était déjà haute|quand nous sommes rentrés._"),
          QStringLiteral("Ça ne m'intéresse plus, voilà."),
          QStringLiteral("Il a dit « jamais », et il _s'est tu_."),
          QStringLiteral("Ma mère préférait l'hôtel près du théâtre."),
          QStringLiteral("À quelle heure part le dernier train ?"),
          QStringLiteral("Je n'en sais rien, demandez à l'épicière."),
          QStringLiteral("Quel dommage ! On aurait dîné ensemble."),
          QStringLiteral("Promets-moi d'être là dès l'aube."),
          QStringLiteral("Même si le bateau ne revient pas ?")}},
        {QStringLiteral("de"),
         {QStringLiteral("Könnten Sie mir bitte die Tür öffnen?"),
          QStringLiteral("- Natürlich.|- Schönen Dank."),
          QStringLiteral("_Früher hätte ich das nie geglaubt._"),
          QStringLiteral("Wir müssen über die Brücke, bevor es dunkel wird."),
          QStringLiteral("Das Mädchen heißt Käthe, nicht wahr?"),
          QStringLiteral("Er weiß genau, was er tut."),
          QStringLiteral("Gib mir den Schlüssel zurück, _sofort_!"),
          QStringLiteral("Die Straße ist für drei Tage gesperrt."),
          QStringLiteral("Warum hört denn niemand zu?"), QStringLiteral("Weil alle schon längst schlafen.")}},
        {QStringLiteral("ru"),
         {QStringLiteral("Добрый вечер. Вы кого-то ждёте?"),
          QStringLiteral("- Нет, уже никого.|- Тогда садитесь с нами."),
          QStringLiteral("_В то лето я впервые увидел море._"),
          QStringLiteral("Не надо кричать, соседи всё слышат."),
          QStringLiteral("Он обещал вернуться к рождеству."), QStringLiteral("Поезд опаздывает на три часа."),
          QStringLiteral("Подожди меня у старого моста."), QStringLiteral("А если _дождь_ не кончится?"),
          QStringLiteral("Тогда будем пить чай и разговаривать."),
          QStringLiteral("Мама никогда не рассказывала об этом."), QStringLiteral("Хорошо, я верю тебе.")}},
        {QStringLiteral("pl"),
         {QStringLiteral("Dzień dobry, czy to miejsce jest wolne?"),
          QStringLiteral("- Proszę bardzo.|- Dziękuję."),
          QStringLiteral("_Nigdy wcześniej nie widziałem morza._"),
          QStringLiteral("Gdzie są moje klucze? Wyszedłeś bez nich?"),
          QStringLiteral("Święta spędzimy u babci w Łodzi."),
          QStringLiteral("Źle się czuję, wróćmy już do domu."),
          QStringLiteral("Ktoś puka do drzwi, otwórz _natychmiast_."),
          QStringLiteral("Żałuję, że cię wtedy nie posłuchałam."),
          QStringLiteral("Pociąg odjeżdża za pięć minut."),
          QStringLiteral("Jeśli zdążymy, będzie cudownie.")}},
        {QStringLiteral("el"),
         {QStringLiteral("Καλησπέρα σας, περιμένετε κάποιον;"),
          QStringLiteral("- Όχι, κανέναν.|- Τότε καθίστε μαζί μας."),
          QStringLiteral("_Εκείνο το καλοκαίρι είδα πρώτη φορά τη θάλασσα._"),
          QStringLiteral("Μη φωνάζεις, μας ακούνε οι γείτονες."),
          QStringLiteral("Υποσχέθηκε ότι θα γυρίσει πριν το χειμώνα."),
          QStringLiteral("Το τρένο έχει καθυστέρηση τρεις ώρες."),
          QStringLiteral("Περίμενέ με κάτω από την παλιά γέφυρα."),
          QStringLiteral("Κι αν δεν σταματήσει η βροχή;"),
          QStringLiteral("Τότε θα πιούμε καφέ και θα κουβεντιάσουμε."),
          QStringLiteral("Εντάξει, σε πιστεύω.")}},
        {QStringLiteral("tr"),
         {QStringLiteral("İyi akşamlar, burası boş mu acaba?"),
          QStringLiteral("- Evet, buyurun.|- Çok teşekkür ederim."),
          QStringLiteral("_O yaz denizi ilk kez görmüştüm._"),
          QStringLiteral("Bağırma, komşular bizi duyuyor."),
          QStringLiteral("Kıştan önce döneceğine söz vermişti."),
          QStringLiteral("Tren üç saat gecikmeli geliyormuş."),
          QStringLiteral("Beni eski köprünün altında bekle."), QStringLiteral("Ya yağmur hiç durmazsa?"),
          QStringLiteral("O zaman çay içip konuşuruz."),
          QStringLiteral("Annem bunu bize hiç anlatmadı, şaşırdım."),
          QStringLiteral("Peki, sana inanıyorum kardeşim.")}},
        {QStringLiteral("he"),
         {QStringLiteral("ערב טוב, אתם מחכים למישהו?"),
          QStringLiteral("- לא, לאף אחד.|- אז שבו איתנו בבקשה."),
          QStringLiteral("באותו קיץ ראיתי את הים בפעם הראשונה."),
          QStringLiteral("אל תצעקי, השכנים שומעים הכול."), QStringLiteral("הוא הבטיח לחזור לפני החורף."),
          QStringLiteral("הרכבת מאחרת בשלוש שעות."), QStringLiteral("חכה לי ליד הגשר הישן."),
          QStringLiteral("ומה אם הגשם לא ייפסק?"), QStringLiteral("אז נשתה תה ונדבר כל הלילה."),
          QStringLiteral("אמא שלי אף פעם לא סיפרה על זה."), QStringLiteral("בסדר, אני מאמין לך.")}},
        {QStringLiteral("ar"),
         {QStringLiteral("مساء الخير، هل تنتظر أحدا هنا؟"),
          QStringLiteral("- لا، لا أحد.|- إذن اجلس معنا من فضلك."),
          QStringLiteral("في ذلك الصيف رأيت البحر لأول مرة."),
          QStringLiteral("لا تصرخ، الجيران يسمعون كل شيء."), QStringLiteral("وعدني أن يعود قبل الشتاء."),
          QStringLiteral("القطار متأخر ثلاث ساعات كاملة."), QStringLiteral("انتظرني تحت الجسر القديم."),
          QStringLiteral("وماذا لو لم يتوقف المطر؟"), QStringLiteral("عندها نشرب الشاي ونتحدث طوال الليل."),
          QStringLiteral("أمي لم تخبرنا عن هذا الأمر أبدا."), QStringLiteral("حسنا، أنا أصدقك يا صديقي.")}},
        {QStringLiteral("zh"),
         {QStringLiteral("晚上好，请问这里有人坐吗？"), QStringLiteral("- 没有，请坐。|- 谢谢你。"),
          QStringLiteral("_那年夏天我第一次看见大海。_"), QStringLiteral("别大声喊，邻居们都听得见。"),
          QStringLiteral("他答应过冬天之前一定回来。"), QStringLiteral("火车晚点了三个小时，我们走吧。"),
          QStringLiteral("你在那座旧桥下面等我。"), QStringLiteral("要是雨一直不停怎么办？"),
          QStringLiteral("那我们就喝茶，聊一个晚上。"), QStringLiteral("妈妈从来没有告诉过我们这件事。"),
          QStringLiteral("好吧，我相信你说的话。")}},
        {QStringLiteral("zh-Hant"),
         {QStringLiteral("晚安，請問這裡有人坐嗎？"), QStringLiteral("- 沒有，請坐。|- 謝謝你。"),
          QStringLiteral("_那年夏天我第一次看見大海。_"), QStringLiteral("別大聲喊，鄰居們都聽得見。"),
          QStringLiteral("他答應過冬天之前一定回來。"), QStringLiteral("火車誤點了三個小時，我們走吧。"),
          QStringLiteral("你在那座舊橋下面等我。"), QStringLiteral("要是雨一直不停怎麼辦？"),
          QStringLiteral("那我們就喝茶，聊一個晚上。"), QStringLiteral("媽媽從來沒有告訴過我們這件事。"),
          QStringLiteral("好吧，我相信你說的話。")}},
        {QStringLiteral("ja"),
         {QStringLiteral("こんばんは、この席は空いていますか？"),
          QStringLiteral("- どうぞ。|- ありがとうございます。"),
          QStringLiteral("_あの夏、初めて海を見たんだ。_"),
          QStringLiteral("大きな声を出さないで、近所に聞こえるわ。"),
          QStringLiteral("冬になる前に戻ると約束したのに。"),
          QStringLiteral("電車は三時間も遅れているらしい。"), QStringLiteral("古い橋の下で待っていてくれ。"),
          QStringLiteral("もし雨がやまなかったら？"), QStringLiteral("それならコーヒーを飲んで話そう。"),
          QStringLiteral("母さんは一度も話してくれなかった。"), QStringLiteral("わかった、君を信じるよ。")}},
        {QStringLiteral("ko"),
         {QStringLiteral("안녕하세요, 여기 자리 있습니까?"),
          QStringLiteral("- 아니요, 앉으세요.|- 고맙습니다."),
          QStringLiteral("_그해 여름 처음으로 바다를 보았다._"),
          QStringLiteral("소리 지르지 마, 이웃들이 다 듣잖아."),
          QStringLiteral("그는 겨울이 오기 전에 돌아온다고 약속했어."),
          QStringLiteral("기차가 세 시간이나 늦는대요."),
          QStringLiteral("오래된 다리 밑에서 나를 기다려 줘."),
          QStringLiteral("비가 그치지 않으면 어떡하지?"), QStringLiteral("그러면 차를 마시면서 이야기하자."),
          QStringLiteral("어머니는 그 일을 말해 준 적이 없어."), QStringLiteral("좋아, 너를 믿을게.")}}};
    return texts;
}

} // namespace

QStringList dialogueLanguages() {
    return conversations().keys();
}

Cue cueOf(qint64 startMs, qint64 endMs, const QString &notation) {
    Cue cue{startMs, endMs, {QString()}, {}};
    bool italic = false;
    qint32 begin = 0;
    const auto closeRange = [&cue, &begin, &italic] {
        const auto end = static_cast<qint32>(cue.lines.back().size());
        if (italic && end > begin)
            cue.italics.append({static_cast<qint32>(cue.lines.size()) - 1, begin, end});
        begin = end;
    };
    for (const QChar c : notation) {
        if (c == u'_') {
            closeRange();
            italic = !italic;
        } else if (c == u'|') {
            closeRange();
            cue.lines.append(QString());
            begin = 0;
        } else {
            cue.lines.back() += c;
        }
    }
    closeRange();
    return cue;
}

QList<Cue> dialogue(const QString &language, qint64 stepMs) {
    QList<Cue> cues;
    const auto inSteps = [stepMs](qint64 ms) { return ms / stepMs * stepMs; };
    for (const QString &text : conversations().value(language)) {
        const qint64 i = cues.size();
        cues.append(cueOf(inSteps(2000 + i * 3987), inSteps(4301 + i * 3987), text));
    }
    return cues;
}

} // namespace murvo::service::test
