<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU" sourcelanguage="en">
<context>
    <name>DialogNamePrompt</name>
    <message>
        <source>&quot;%1&quot; exists already. Replace it?</source>
        <translation>«%1» уже есть. Заменить?</translation>
    </message>
</context>
<context>
    <name>Environment</name>
    <message>
        <source>another instance of Waveform is running (it holds %1)</source>
        <translation>Waveform уже запущен (занят каталог %1)</translation>
    </message>
    <message>
        <source>cannot make a lock file in %1</source>
        <translation>не удаётся создать файл блокировки в %1</translation>
    </message>
    <message>
        <source>cannot make %1: %2</source>
        <translation>не удаётся создать %1: %2</translation>
    </message>
    <message>
        <source>cannot look at %1: %2</source>
        <translation>не удаётся прочитать свойства %1: %2</translation>
    </message>
    <message>
        <source>%1 is a link; remove it</source>
        <translation>%1 — ссылка; удалите её</translation>
    </message>
    <message>
        <source>%1 is not a directory; remove it</source>
        <translation>%1 — не каталог; удалите этот файл</translation>
    </message>
    <message>
        <source>%1 belongs to another user</source>
        <translation>%1 принадлежит другому пользователю</translation>
    </message>
    <message>
        <source>cannot protect %1: %2</source>
        <translation>не удаётся закрыть доступ к %1: %2</translation>
    </message>
</context>
<context>
    <name>FilesModel</name>
    <message>
        <source>Name</source>
        <translation>Имя</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Дата</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Размер</translation>
    </message>
</context>
<context>
    <name>Frame</name>
    <message>
        <source>Load</source>
        <translation>Открыть</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Сохранить</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Справка</translation>
    </message>
</context>
<context>
    <name>GatherOutcome</name>
    <message>
        <source>The acquisition program ended before the measurement was complete.</source>
        <translation>Программа измерения завершилась раньше, чем закончилось измерение.</translation>
    </message>
    <message>
        <source>The acquisition program failed (code %1)</source>
        <translation>Ошибка программы измерения (код %1)</translation>
    </message>
    <message>
        <source>The acquisition program crashed</source>
        <translation>Программа измерения аварийно завершилась</translation>
    </message>
    <message>
        <source>The acquisition program did not answer any more and was ended.</source>
        <translation>Программа измерения перестала отвечать и была завершена.</translation>
    </message>
    <message>
        <source>The acquisition program did not stop when it was told to and was ended.</source>
        <translation>Программа измерения не остановилась по команде и была завершена.</translation>
    </message>
</context>
<context>
    <name>Help</name>
    <message>
        <source>Measure</source>
        <translation>Измерить</translation>
    </message>
    <message>
        <source>Choose the settings, press Start; the same button ends it early.</source>
        <translation>Выберите параметры и нажмите «Старт»; та же кнопка прерывает измерение.</translation>
    </message>
    <message>
        <source>Open traces</source>
        <translation>Открыть рефлектограммы</translation>
    </message>
    <message>
        <source>Press Load, or drop .sor files on the window: up to four at a time.</source>
        <translation>Нажмите «Открыть» или перетащите файлы .sor в окно: не более четырёх одновременно.</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Сохранить</translation>
    </message>
    <message>
        <source>Press Save and give a name: the trace and its report are written.</source>
        <translation>Нажмите «Сохранить» и задайте имя: запишутся рефлектограмма и отчёт о ней.</translation>
    </message>
    <message>
        <source>Events, Reflectograms</source>
        <translation>События, Рефлектограммы</translation>
    </message>
    <message>
        <source>Show and hide the tables. A long or double tap on a reflectogram offers to make it the main one or to delete it.</source>
        <translation>Показать и скрыть таблицы. По долгому или двойному нажатию на рефлектограмму её можно сделать основной или удалить.</translation>
    </message>
    <message>
        <source>Measurement</source>
        <translation>Измерение</translation>
    </message>
    <message>
        <source>Shows the markers A and B; drag them to where to measure.</source>
        <translation>Показывает маркеры A и B; перетащите их на границы измеряемого участка.</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Настройки</translation>
    </message>
    <message>
        <source>Shows and hides the choices of a measurement.</source>
        <translation>Показывает и скрывает параметры измерения.</translation>
    </message>
    <message>
        <source>Moon</source>
        <translation>Луна</translation>
    </message>
    <message>
        <source>Changes between the colours of day and night.</source>
        <translation>Переключает дневные и ночные цвета.</translation>
    </message>
    <message>
        <source>Drag the chart</source>
        <translation>Перетаскивание графика</translation>
    </message>
    <message>
        <source>moves the view, by finger or mouse</source>
        <translation>сдвигает вид, пальцем или мышью</translation>
    </message>
    <message>
        <source>+  –  1:1</source>
        <translation>+  –  1:1</translation>
    </message>
    <message>
        <source>zoom in, zoom out, show everything</source>
        <translation>увеличить, уменьшить, показать всё</translation>
    </message>
    <message>
        <source>Right, Left</source>
        <translation>Вправо, Влево</translation>
    </message>
    <message>
        <source>narrow and widen the distances</source>
        <translation>сузить и расширить интервал расстояний</translation>
    </message>
    <message>
        <source>Up, Down</source>
        <translation>Вверх, Вниз</translation>
    </message>
    <message>
        <source>narrow and widen the levels</source>
        <translation>сузить и расширить интервал уровней</translation>
    </message>
    <message>
        <source>Very short tap on A or B</source>
        <translation>Короткое касание A или B</translation>
    </message>
    <message>
        <source>chooses the marker, or leaves it</source>
        <translation>выбрать маркер или снять выбор</translation>
    </message>
    <message>
        <source>Wheel, Page Up, Page Down</source>
        <translation>Колесо, Page Up, Page Down</translation>
    </message>
    <message>
        <source>move the chosen marker step by step</source>
        <translation>сдвинуть выбранный маркер на шаг</translation>
    </message>
    <message>
        <source>Tab, Space, Enter</source>
        <translation>Tab, Пробел, Enter</translation>
    </message>
    <message>
        <source>go to a control, press it</source>
        <translation>перейти к кнопке, нажать её</translation>
    </message>
    <message>
        <source>Ctrl+O, Ctrl+S, Ctrl+Q</source>
        <translation>Ctrl+O, Ctrl+S, Ctrl+Q</translation>
    </message>
    <message>
        <source>load, save, leave</source>
        <translation>открыть, сохранить, выйти</translation>
    </message>
    <message>
        <source>F1, Escape</source>
        <translation>F1, Escape</translation>
    </message>
    <message>
        <source>this page, close a page or a message</source>
        <translation>эта страница, закрыть страницу или сообщение</translation>
    </message>
    <message>
        <source>Traces, reports</source>
        <translation>Рефлектограммы, отчёты</translation>
    </message>
    <message>
        <source>Configuration</source>
        <translation>Настройки программы</translation>
    </message>
    <message>
        <source>While measuring</source>
        <translation>Во время измерения</translation>
    </message>
    <message>
        <source>About Waveform</source>
        <translation>О программе Waveform</translation>
    </message>
    <message>
        <source>What to press</source>
        <translation>Кнопки</translation>
    </message>
    <message>
        <source>Chart and keys</source>
        <translation>График и клавиши</translation>
    </message>
    <message>
        <source>Where files go</source>
        <translation>Где лежат файлы</translation>
    </message>
    <message>
        <source>Waveform %1</source>
        <translation>Waveform %1</translation>
    </message>
    <message>
        <source>An OTDR workstation: measures optical fibres, shows their reflectograms, finds their events, compares up to four traces and keeps them with a report.</source>
        <translation>Рабочее место для оптического рефлектометра: измеряет оптические волокна, показывает рефлектограммы, находит на них события, сравнивает до четырёх рефлектограмм и сохраняет их с отчётом.</translation>
    </message>
    <message>
        <source>Built on</source>
        <translation>Использованы</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Справка</translation>
    </message>
    <message>
        <source>About</source>
        <translation>О программе</translation>
    </message>
</context>
<context>
    <name>Host</name>
    <message>
        <source>the plugin %1 is missing</source>
        <translation>нет модуля %1</translation>
    </message>
    <message>
        <source>the plugin %1 cannot be loaded: %2</source>
        <translation>не удаётся загрузить модуль %1: %2</translation>
    </message>
    <message>
        <source>%1 is no plugin of this application</source>
        <translation>%1 — не модуль этой программы</translation>
    </message>
    <message>
        <source>Traces can be opened when what is under way now has ended.</source>
        <translation>Рефлектограммы можно будет открыть, когда закончится текущая операция.</translation>
    </message>
    <message>
        <source>... and %1 more</source>
        <translation>... и ещё %1</translation>
    </message>
    <message>
        <source>%1: not a file of this machine</source>
        <translation>%1: файл не на этом компьютере</translation>
    </message>
</context>
<context>
    <name>Libraries</name>
    <message>
        <source>LGPL 3 or GPL 2</source>
        <translation>LGPL 3 или GPL 2</translation>
    </message>
    <message>
        <source>windows, files, processes</source>
        <translation>окна, файлы, процессы</translation>
    </message>
    <message>
        <source>Qwt License 1.0 (LGPL 2.1 with exceptions)</source>
        <translation>Qwt License 1.0 (LGPL 2.1 с исключениями)</translation>
    </message>
    <message>
        <source>the chart</source>
        <translation>график</translation>
    </message>
    <message>
        <source>LGPL 2.1 or later</source>
        <translation>LGPL 2.1 или новее</translation>
    </message>
    <message>
        <source>templates of reports, in the report program</source>
        <translation>шаблоны отчётов, в программе отчётов</translation>
    </message>
    <message>
        <source>MIT</source>
        <translation>MIT</translation>
    </message>
    <message>
        <source>views of samples, built in</source>
        <translation>доступ к отсчётам, встроена</translation>
    </message>
    <message>
        <source>GPL 3 or later with the GCC Runtime Library Exception</source>
        <translation>GPL 3 или новее с исключением GCC Runtime Library Exception</translation>
    </message>
    <message>
        <source>the language</source>
        <translation>язык программы</translation>
    </message>
    <message>
        <source>the system</source>
        <translation>система</translation>
    </message>
</context>
<context>
    <name>MeasView</name>
    <message>
        <source>Measurement</source>
        <translation>Измерение</translation>
    </message>
    <message>
        <source>2 points</source>
        <translation>2 точки</translation>
    </message>
    <message>
        <source>2 pt + LSA</source>
        <translation>2 точки + МНК</translation>
    </message>
    <message>
        <source>Markers to screen</source>
        <translation>Маркеры на экран</translation>
    </message>
</context>
<context>
    <name>MeasWindow</name>
    <message>
        <source>Start</source>
        <translation>Старт</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Стоп</translation>
    </message>
    <message>
        <source>The measurement card was disconnected.</source>
        <translation>Измерительная плата отключена.</translation>
    </message>
    <message>
        <source>The measurement could not be started (code %1).</source>
        <translation>Не удалось начать измерение (код %1).</translation>
    </message>
</context>
<context>
    <name>MissingPrograms</name>
    <message>
        <source>Nothing can be measured: the program %1 is missing.</source>
        <translation>Измерение невозможно: нет программы %1.</translation>
    </message>
    <message>
        <source>No events can be found in a file: the program %1 is missing.</source>
        <translation>Поиск событий в файле невозможен: нет программы %1.</translation>
    </message>
    <message>
        <source>No reports can be written: the program %1 is missing.</source>
        <translation>Создание отчётов невозможно: нет программы %1.</translation>
    </message>
</context>
<context>
    <name>NameDialog</name>
    <message>
        <source>Save</source>
        <translation>Сохранить</translation>
    </message>
    <message>
        <source>File name</source>
        <translation>Имя файла</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>Please type a name.</source>
        <translation>Введите имя.</translation>
    </message>
    <message>
        <source>This name cannot be used: it is nothing but dots and blanks.</source>
        <translation>Такое имя не подходит: в нём только точки и пробелы.</translation>
    </message>
    <message>
        <source>It will be saved as &quot;%1&quot;.</source>
        <translation>Будет сохранено как «%1».</translation>
    </message>
</context>
<context>
    <name>NightSwitch</name>
    <message>
        <source>Colours for the night</source>
        <translation>Ночные цвета</translation>
    </message>
</context>
<context>
    <name>OpenDialog</name>
    <message>
        <source>There are no files here.</source>
        <translation>Здесь нет файлов.</translation>
    </message>
    <message>
        <source>Load</source>
        <translation>Открыть</translation>
    </message>
    <message>
        <source>Other...</source>
        <translation>Другая папка...</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>May still be loaded: %1</source>
        <translation>Можно открыть ещё: %1</translation>
    </message>
</context>
<context>
    <name>OtdrDistanceScaleDraw</name>
    <message>
        <source>km</source>
        <translation>км</translation>
    </message>
    <message>
        <source>m</source>
        <translation>м</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>A: %1 m
B: %2 m
L: %3 m
Loss: %4 dB
Att: %5 dB/km
Reflection: %5 dB
ORL: %6
</source>
        <translation>A: %1 м
B: %2 м
Длина: %3 м
Потери: %4 дБ
Затухание: %5 дБ/км
Отражение: %5 дБ
ORL: %6
</translation>
    </message>
</context>
<context>
    <name>QmMarkerLegend</name>
    <message>
        <source>%1 m
%2 dB</source>
        <translation>%1 м
%2 дБ</translation>
    </message>
</context>
<context>
    <name>ReflTableMenu</name>
    <message>
        <source>Set as main</source>
        <translation>Сделать основной</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Удалить</translation>
    </message>
    <message>
        <source>Delete all</source>
        <translation>Удалить все</translation>
    </message>
</context>
<context>
    <name>SecondInstance</name>
    <message>
        <source>Waveform is running already, but does not answer; close it and start again (it holds %1)</source>
        <translation>Waveform уже запущен, но не отвечает; закройте его и запустите снова (занят каталог %1)</translation>
    </message>
</context>
<context>
    <name>Stopping</name>
    <message>
        <source>Close</source>
        <translation>Закрыть</translation>
    </message>
    <message>
        <source>Waveform</source>
        <translation>Waveform</translation>
    </message>
</context>
<context>
    <name>TextDialog</name>
    <message>
        <source>Close</source>
        <translation>Закрыть</translation>
    </message>
</context>
<context>
    <name>TouchKeyboard</name>
    <message>
        <source>Space</source>
        <translation>Пробел</translation>
    </message>
    <message>
        <source>CAPS</source>
        <translation>CAPS</translation>
    </message>
    <message>
        <source>Shift</source>
        <translation>Shift</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Стереть</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Очистить</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>Влево</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Вправо</translation>
    </message>
</context>
<context>
    <name>TraceError</name>
    <message>
        <source>the file is empty</source>
        <translation>файл пуст</translation>
    </message>
    <message>
        <source>too short for a trace file</source>
        <translation>файл слишком короткий для рефлектограммы</translation>
    </message>
    <message>
        <source>not a trace file: there is no map of blocks at its start</source>
        <translation>это не файл рефлектограммы: в начале нет карты блоков</translation>
    </message>
    <message>
        <source>not a trace file: its start is no map of blocks</source>
        <translation>это не файл рефлектограммы: его начало — не карта блоков</translation>
    </message>
    <message>
        <source>the file ends within its map of blocks</source>
        <translation>файл обрывается внутри карты блоков</translation>
    </message>
    <message>
        <source>the map names a block with an impossible name</source>
        <translation>в карте блоков недопустимое имя блока</translation>
    </message>
    <message>
        <source>the map claims too many blocks</source>
        <translation>в карте указано слишком много блоков</translation>
    </message>
    <message>
        <source>no trace: the file holds no samples</source>
        <translation>нет рефлектограммы: в файле нет отсчётов</translation>
    </message>
    <message>
        <source>larger than 64 MiB, which no trace file is</source>
        <translation>больше 64 МиБ: файлов рефлектограмм такого размера не бывает</translation>
    </message>
    <message>
        <source>not a regular file</source>
        <translation>это не обычный файл</translation>
    </message>
    <message>
        <source>not a snapshot: no &quot;WFPK&quot; at the front</source>
        <translation>это не снимок измерения: в начале нет «WFPK»</translation>
    </message>
    <message>
        <source>snapshot: unknown version</source>
        <translation>снимок измерения: неизвестная версия</translation>
    </message>
    <message>
        <source>snapshot: impossible header size</source>
        <translation>снимок измерения: недопустимый размер заголовка</translation>
    </message>
    <message>
        <source>snapshot: the length of the file is not that of its samples</source>
        <translation>снимок измерения: длина файла не соответствует числу отсчётов</translation>
    </message>
    <message>
        <source>snapshot: impossible sample interval</source>
        <translation>снимок измерения: недопустимый интервал отсчётов</translation>
    </message>
    <message>
        <source>snapshot: impossible time of the first sample</source>
        <translation>снимок измерения: недопустимое время первого отсчёта</translation>
    </message>
    <message>
        <source>snapshot: no counts per dB</source>
        <translation>снимок измерения: не указано число единиц на дБ</translation>
    </message>
    <message>
        <source>snapshot: the file ends inside its header</source>
        <translation>снимок измерения: файл обрывается внутри заголовка</translation>
    </message>
    <message>
        <source>snapshot: more than %1 samples</source>
        <translation>снимок измерения: больше %1 отсчётов</translation>
    </message>
    <message>
        <source>snapshot: the checksum does not fit the samples</source>
        <translation>снимок измерения: контрольная сумма не сходится с отсчётами</translation>
    </message>
    <message>
        <source>cannot be opened</source>
        <translation>не удаётся открыть</translation>
    </message>
    <message>
        <source>cannot be read</source>
        <translation>не удаётся прочитать</translation>
    </message>
    <message>
        <source>no bytes</source>
        <translation>нет данных</translation>
    </message>
    <message>
        <source>out of memory</source>
        <translation>не хватает памяти</translation>
    </message>
</context>
<context>
    <name>TraceNote</name>
    <message>
        <source>of %1 samples the file holds %2</source>
        <translation>из %1 отсчётов в файле есть %2</translation>
    </message>
    <message>
        <source>how the trace was measured is missing; distances are not known</source>
        <translation>нет данных о том, как проводилось измерение; расстояния неизвестны</translation>
    </message>
    <message>
        <source>the data spacing is 0; distances are not known</source>
        <translation>интервал отсчётов равен 0; расстояния неизвестны</translation>
    </message>
    <message>
        <source>of %1 events the file holds %2</source>
        <translation>из %1 событий в файле есть %2</translation>
    </message>
    <message>
        <source>the file ends within the block &quot;%1&quot;</source>
        <translation>файл обрывается внутри блока «%1»</translation>
    </message>
    <message>
        <source>the file ends before the block &quot;%1&quot;</source>
        <translation>файл обрывается перед блоком «%1»</translation>
    </message>
    <message>
        <source>the block &quot;%1&quot; ends early; its last fields are missing</source>
        <translation>блок «%1» короче положенного; его последних полей нет</translation>
    </message>
    <message>
        <source>the block &quot;%1&quot; is there more than once; the first is used</source>
        <translation>блок «%1» записан несколько раз; взят первый</translation>
    </message>
    <message>
        <source>the block &quot;%1&quot; does not stand where the map puts it; it was found close by</source>
        <translation>блок «%1» стоит не там, где указано в оглавлении; он найден рядом</translation>
    </message>
    <message>
        <source>%1 bytes follow the last block; they are kept</source>
        <translation>байтов после последнего блока: %1; они сохраняются</translation>
    </message>
    <message>
        <source>the samples come in %1 sections; they are joined</source>
        <translation>отсчёты записаны частями, их число: %1; они соединены</translation>
    </message>
    <message>
        <source>the scale factor of the samples is 0; 1.000 is assumed</source>
        <translation>масштаб отсчётов равен 0; принято 1.000</translation>
    </message>
    <message>
        <source>the group index %1 is impossible; %2 is assumed</source>
        <translation>групповой показатель преломления %1 невозможен; принято %2</translation>
    </message>
    <message>
        <source>the backscatter coefficient is stored as %1; it is read as %2 dB</source>
        <translation>коэффициент обратного рассеяния записан как %1; он прочитан как %2 дБ</translation>
    </message>
    <message>
        <source>the backscatter coefficient is stored as %1, which none is; the usual one is taken</source>
        <translation>коэффициент обратного рассеяния записан как %1, что невозможно; взят обычный</translation>
    </message>
    <message>
        <source>the samples are told to have several spacings; one is taken for all of them</source>
        <translation>для отсчётов указано несколько интервалов; для всех взят один</translation>
    </message>
    <message>
        <source>the data spacing is %1 times what the range allows; distances may be wrong</source>
        <translation>интервал отсчётов в %1 раз больше, чем позволяет дальность; расстояния могут быть неверны</translation>
    </message>
    <message>
        <source>the data spacing is ten times what the range allows; a tenth of it is taken</source>
        <translation>интервал отсчётов в десять раз больше, чем позволяет дальность; взята его десятая часть</translation>
    </message>
    <message>
        <source>the samples are counted as %1 and as %2; %3 are taken</source>
        <translation>число отсчётов указано как %1 и как %2; взято %3</translation>
    </message>
    <message>
        <source>the map does not end where it says; the blocks are taken from where it says</source>
        <translation>оглавление кончается не там, где указано; блоки взяты с указанного места</translation>
    </message>
    <message>
        <source>the map does not end where it says; the blocks are taken from its real end</source>
        <translation>оглавление кончается не там, где указано; блоки взяты с его действительного конца</translation>
    </message>
    <message>
        <source>the landmarks are more than their block can hold; they are not shown</source>
        <translation>ориентиров больше, чем вмещает их блок; они не показаны</translation>
    </message>
    <message>
        <source>the data spacing is 0; the range over the number of samples is taken</source>
        <translation>интервал отсчётов равен 0; взят диапазон, делённый на число отсчётов</translation>
    </message>
    <message>
        <source>the number of pulse widths is %1; one is assumed</source>
        <translation>число длительностей импульса: %1; принята одна</translation>
    </message>
    <message>
        <source>the events fit the samples with 0 m at sample %1, not where the offsets put it</source>
        <translation>по смещениям из файла события не совпадают с отсчётами; начало линии принято на отсчёте %1, где они совпадают</translation>
    </message>
    <message>
        <source>a snapshot tells no group index: %1 assumed</source>
        <translation>снимок измерения не содержит группового показателя преломления: принято %1</translation>
    </message>
    <message>
        <source>samples or events were changed, so the maker&apos;s own blocks were left out: %1</source>
        <translation>отсчёты или события изменились, поэтому собственные блоки производителя не сохранены: %1</translation>
    </message>
    <message>
        <source>%1: the file is damaged; what could be read of it is shown (%2)</source>
        <translation>%1: файл повреждён; показано то, что удалось прочитать (%2)</translation>
    </message>
</context>
<context>
    <name>TwoMarkersResult</name>
    <message>
        <source> m</source>
        <translation> м</translation>
    </message>
    <message>
        <source> dB</source>
        <translation> дБ</translation>
    </message>
    <message>
        <source> dB/km</source>
        <translation> дБ/км</translation>
    </message>
</context>
<context>
    <name>Units</name>
    <message>
        <source>nm</source>
        <translation>нм</translation>
    </message>
    <message>
        <source>s</source>
        <translation>с</translation>
    </message>
    <message>
        <source>min</source>
        <translation>мин</translation>
    </message>
    <message>
        <source>ns</source>
        <translation>нс</translation>
    </message>
    <message>
        <source>µs</source>
        <translation>мкс</translation>
    </message>
    <message>
        <source>km</source>
        <translation>км</translation>
    </message>
</context>
<context>
    <name>WaitWnd</name>
    <message>
        <source>Please wait…</source>
        <translation>Подождите…</translation>
    </message>
</context>
<context>
    <name>WarningWindow</name>
    <message>
        <source>OK</source>
        <translation>ОК</translation>
    </message>
</context>
<context>
    <name>Waveform::DistanceNote</name>
    <message>
        <source>The distances of this trace are not known: a metre stands for a sample.</source>
        <translation>Расстояния этой рефлектограммы неизвестны: метр обозначает один отсчёт.</translation>
    </message>
</context>
<context>
    <name>Waveform::EmptyHint</name>
    <message>
        <source>Press Start to measure.
Press Load to open traces,
or drop their files here.</source>
        <translation>Нажмите «Старт», чтобы измерить.
Нажмите «Открыть» для готовых рефлектограмм
или перетащите сюда их файлы.</translation>
    </message>
    <message>
        <source>Press Settings, then Start.
Press Load to open traces,
or drop their files here.</source>
        <translation>Нажмите «Настройки», затем «Старт».
Нажмите «Открыть» для готовых рефлектограмм
или перетащите сюда их файлы.</translation>
    </message>
</context>
<context>
    <name>Waveform::EventsTableModel</name>
    <message>
        <source>Type</source>
        <translation>Тип</translation>
    </message>
    <message>
        <source>Location</source>
        <translation>Положение</translation>
    </message>
    <message>
        <source>Loss</source>
        <translation>Потери</translation>
    </message>
    <message>
        <source>Reflection</source>
        <translation>Отражение</translation>
    </message>
    <message>
        <source>ORL</source>
        <translation>ORL</translation>
    </message>
    <message>
        <source>Attenuation</source>
        <translation>Затухание</translation>
    </message>
    <message>
        <source>Start of the fibre</source>
        <translation>Начало волокна</translation>
    </message>
    <message>
        <source>Reflective event</source>
        <translation>Отражающее событие</translation>
    </message>
    <message>
        <source>Non-reflective event</source>
        <translation>Неотражающее событие</translation>
    </message>
    <message>
        <source>Positive event: the level seems to rise</source>
        <translation>Положительное событие: уровень как будто растёт</translation>
    </message>
    <message>
        <source>Fibre section</source>
        <translation>Участок волокна</translation>
    </message>
    <message>
        <source>End of the fibre</source>
        <translation>Конец волокна</translation>
    </message>
</context>
<context>
    <name>Waveform::EventsTableView</name>
    <message>
        <source>Events</source>
        <translation>События</translation>
    </message>
    <message>
        <source>The receiver was saturated: as much was reflected, or more</source>
        <translation>Приёмник был в насыщении: отражено столько или больше</translation>
    </message>
</context>
<context>
    <name>Waveform::Keeper</name>
    <message>
        <source>Failed to save reports!</source>
        <translation>Не удалось сохранить отчёты!</translation>
    </message>
    <message>
        <source>Reports was saved to:
</source>
        <translation>Отчёты сохранены:
</translation>
    </message>
    <message>
        <source>
Reports automatically copied to USB-flash:
</source>
        <translation>
Отчёты скопированы на USB-накопитель:
</translation>
    </message>
    <message>
        <source>Only 4 reflectograms can be loaded at the same time.
Please, remove one or more from the &quot;Reflectograms&quot; table</source>
        <translation>Одновременно можно открыть не более 4 рефлектограмм.
Удалите одну или несколько из таблицы «Рефлектограммы»</translation>
    </message>
    <message>
        <source>Open reflectogram</source>
        <translation>Открыть рефлектограмму</translation>
    </message>
    <message>
        <source>Storage</source>
        <translation>Память прибора</translation>
    </message>
    <message>
        <source>Flash drive</source>
        <translation>USB-накопитель</translation>
    </message>
    <message>
        <source>Waveform</source>
        <translation>Waveform</translation>
    </message>
</context>
<context>
    <name>Waveform::Model</name>
    <message>
        <source>A measurement is running already.</source>
        <translation>Измерение уже идёт.</translation>
    </message>
    <message>
        <source>There is no measurement card.</source>
        <translation>Нет измерительной платы.</translation>
    </message>
    <message>
        <source>The measurement card refused the command &quot;%1&quot;.</source>
        <translation>Измерительная плата отклонила команду «%1».</translation>
    </message>
    <message>
        <source>The acquisition program %1 could not be started.</source>
        <translation>Не удалось запустить программу измерения %1.</translation>
    </message>
    <message>
        <source>The measured trace cannot be used: %1</source>
        <translation>Измеренную рефлектограмму нельзя использовать: %1</translation>
    </message>
</context>
<context>
    <name>Waveform::Plot</name>
    <message>
        <source>Plot</source>
        <translation>График</translation>
    </message>
</context>
<context>
    <name>Waveform::Plugin</name>
    <message>
        <source>Waveform</source>
        <translation>Waveform</translation>
    </message>
</context>
<context>
    <name>Waveform::ReflsTableModel</name>
    <message>
        <source>Name</source>
        <translation>Имя</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Дата</translation>
    </message>
    <message>
        <source>Distance</source>
        <translation>Длина</translation>
    </message>
    <message>
        <source>Pulse</source>
        <translation>Импульс</translation>
    </message>
    <message>
        <source>ORL</source>
        <translation>ORL</translation>
    </message>
    <message>
        <source>Total loss</source>
        <translation>Полные потери</translation>
    </message>
</context>
<context>
    <name>Waveform::ReflsTableView</name>
    <message>
        <source>Reflectograms</source>
        <translation>Рефлектограммы</translation>
    </message>
</context>
<context>
    <name>Waveform::TwoMarkersResultWidget</name>
    <message>
        <source>Length: </source>
        <translation>Длина: </translation>
    </message>
    <message>
        <source>Loss: </source>
        <translation>Потери: </translation>
    </message>
    <message>
        <source>Attenuation: </source>
        <translation>Затухание: </translation>
    </message>
    <message>
        <source>Reflection: </source>
        <translation>Отражение: </translation>
    </message>
    <message>
        <source>ORL: </source>
        <translation>ORL: </translation>
    </message>
    <message>
        <source> dB</source>
        <translation> дБ</translation>
    </message>
</context>
<context>
    <name>Waveform::TwoMarkersView</name>
    <message>
        <source>Measurement</source>
        <translation>Измерение</translation>
    </message>
</context>
<context>
    <name>Waveform::Window</name>
    <message>
        <source>Time</source>
        <translation>Время</translation>
    </message>
    <message>
        <source>Pulse</source>
        <translation>Импульс</translation>
    </message>
    <message>
        <source>Distance</source>
        <translation>Дальность</translation>
    </message>
    <message>
        <source>Wavelength</source>
        <translation>Длина волны</translation>
    </message>
    <message>
        <source>All</source>
        <translation>Все</translation>
    </message>
    <message>
        <source>Events</source>
        <translation>События</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Настройки</translation>
    </message>
    <message>
        <source>In realtime mode you need sets pulse 275 ns or lesser. 
 Also you must choose one of wavelength, not both in same time </source>
        <translation>В режиме реального времени длительность импульса должна быть не больше 275 нс.
Кроме того, нужно выбрать одну длину волны, а не обе сразу </translation>
    </message>
</context>
</TS>
